use strict;
use warnings;

my $n = shift // 30000;

my ($longest, $best) = (0, 0);
for my $start (1 .. $n) {
    my ($x, $steps) = ($start, 0);
    while ($x != 1) {
        if ($x % 2 == 0) {
            $x = int($x / 2);
        } else {
            $x = 3 * $x + 1;
        }
        $steps++;
    }
    if ($steps > $longest) {
        $longest = $steps;
        $best    = $start;
    }
}
print "$best $longest\n";
