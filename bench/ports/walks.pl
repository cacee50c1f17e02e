use strict;
use warnings;
no warnings 'recursion';

my $n = shift // 12;

sub walk {
    my ($x, $y, $goal, $heading, $turns) = @_;
    return 0 if $x > $goal || $y > $goal || $turns < 0;
    return 1 if $x == $goal && $y == $goal;
    if ($heading == 1) {
        return walk($x + 1, $y, $goal, 1, $turns) + walk($x, $y + 1, $goal, 2, $turns - 1);
    }
    return walk($x + 1, $y, $goal, 1, $turns - 1) + walk($x, $y + 1, $goal, 2, $turns);
}

print walk(0, 0, $n, 1, 7), " ", walk(0, 0, $n, 2, 6), "\n";
