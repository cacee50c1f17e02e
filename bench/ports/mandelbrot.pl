use strict;
use warnings;

my $n = shift // 320;

my ($width, $height, $limit) = ($n, 240, 100);
my ($total, $inside) = (0, 0);
for my $row (0 .. $height - 1) {
    my $cy = $row * 2 / $height - 1;
    for my $column (0 .. $width - 1) {
        my $cx = $column * 3 / $width - 2;
        my ($x, $y, $xx, $yy) = (0, 0, 0, 0);
        my $steps = 0;
        while ($steps < $limit && $xx + $yy <= 4) {
            $y = 2 * $x * $y + $cy;
            $x = $xx - $yy + $cx;
            $xx = $x * $x;
            $yy = $y * $y;
            $steps++;
        }
        $total += $steps;
        $inside++ if $steps == $limit;
    }
}
print "$total $inside\n";
