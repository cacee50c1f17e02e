use strict;
use warnings;

my $n = shift // 150;

my ($seed, %cells) = (42);
for my $i (1 .. $n * $n) {
    $seed = $seed * 16807 % 2147483647;
    $cells{$seed % $n . "," . int($seed / $n) % $n} = $i % 9 + 1;
}

my ($sum, $missing) = (0, 0);
for my $round (1 .. 10) {
    for my $y (0 .. $n - 1) {
        for my $x (0 .. $n - 1) {
            my $cell = $cells{"$x,$y"};
            if ($cell) {
                $sum += $cell;
            } else {
                $missing++;
            }
        }
    }
}
print "$sum $missing\n";
