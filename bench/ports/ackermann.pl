use strict;
use warnings;
no warnings 'recursion';

my $n = shift // 250;

sub ackermann {
    my ($m, $k) = @_;
    return $k + 1 if $m == 0;
    return ackermann($m - 1, 1) if $k == 0;
    return ackermann($m - 1, ackermann($m, $k - 1));
}

my $total = 0;
$total += ackermann(2, 60) for 1 .. $n;
print "$total\n";
