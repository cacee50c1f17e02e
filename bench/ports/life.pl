use strict;
use warnings;

my $n = shift // 120;

my $size = 64;

sub new_board {
    return [map { [(0) x $size] } 1 .. $size];
}

sub step {
    my ($board, $following) = @_;
    for my $y (1 .. $size - 2) {
        my ($above, $row, $below, $target) = ($board->[$y - 1], $board->[$y], $board->[$y + 1], $following->[$y]);
        for my $x (1 .. $size - 2) {
            my $around =
                $above->[$x - 1] + $above->[$x] + $above->[$x + 1] + $row->[$x - 1] + $row->[$x + 1]
                + $below->[$x - 1] + $below->[$x] + $below->[$x + 1];
            if ($around == 3 || ($around == 2 && $row->[$x] == 1)) {
                $target->[$x] = 1;
            } else {
                $target->[$x] = 0;
            }
        }
    }
    return;
}

my ($board, $following, $seed) = (new_board(), new_board(), 42);
for my $y (1 .. $size - 2) {
    for my $x (1 .. $size - 2) {
        $seed = $seed * 16807 % 2147483647;
        $board->[$y][$x] = int($seed / 1000) % 2;
    }
}
for my $generation (1 .. $n) {
    step($board, $following);
    ($board, $following) = ($following, $board);
}
my $checksum = 0;
for my $row (@$board) {
    $checksum = ($checksum * 2 + $_) % 1000003 for @$row;
}
print "$checksum\n";
