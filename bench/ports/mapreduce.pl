use strict;
use warnings;

my $n = shift // 900;

sub map_list {
    my ($list, $change) = @_;
    my @result;
    push @result, $change->($_) for @$list;
    return \@result;
}

sub filter_list {
    my ($list, $accepts) = @_;
    my @result;
    for my $item (@$list) {
        push @result, $item if $accepts->($item);
    }
    return \@result;
}

sub fold {
    my ($list, $start, $join) = @_;
    my $result = $start;
    $result = $join->($result, $_) for @$list;
    return $result;
}

my @numbers = 1 .. 1000;
my $total   = 0;
for my $round (1 .. $n) {
    my $changed = map_list(\@numbers, sub { return $_[0] * $round % 97 });
    my $chosen = filter_list($changed, sub { return $_[0] % 3 == 1 });
    $total += fold($chosen, 0, sub { return $_[0] + $_[1] });
}
print "$total\n";
