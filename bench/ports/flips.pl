use strict;
use warnings;

my $n = shift // 8;

my ($most, $total, @order) = (0, 0, 1 .. $n);

sub flips_of {
    my @list = @order;
    my ($flips, $first) = (0, $list[0]);
    while ($first != 1) {
        my ($low, $high) = (0, $first - 1);
        while ($low < $high) {
            ($list[$low], $list[$high]) = ($list[$high], $list[$low]);
            $low++;
            $high--;
        }
        $flips++;
        $first = $list[0];
    }
    return $flips;
}

sub visit {
    my ($from) = @_;
    if ($from == $n) {
        my $flips = flips_of();
        $total += $flips;
        $most = $flips if $flips > $most;
        return;
    }
    for my $i ($from .. $n - 1) {
        ($order[$from], $order[$i]) = ($order[$i], $order[$from]);
        visit($from + 1);
        ($order[$from], $order[$i]) = ($order[$i], $order[$from]);
    }
    return;
}

visit(0);
print "$most $total\n";
