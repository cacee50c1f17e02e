use strict;
use warnings;
no warnings 'recursion';

my $n = shift // 40;

sub tak {
    my ($x, $y, $z) = @_;
    return $z if $y >= $x;
    return tak(tak($x - 1, $y, $z), tak($y - 1, $z, $x), tak($z - 1, $x, $y));
}

my $total = 0;
$total += tak(18, 12, 6) for 1 .. $n;
print "$total\n";
