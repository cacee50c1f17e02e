use strict;
use warnings;
use List::Util qw(min);

my $n = shift // 6000;

sub distance {
    my ($x, $y) = @_;
    my $width    = length $y;
    my @previous = 0 .. $width;
    for my $i (1 .. length $x) {
        my @current = ($i);
        my $letter  = substr($x, $i - 1, 1);
        for my $j (1 .. $width) {
            my $cost = substr($y, $j - 1, 1) eq $letter ? 0 : 1;
            push @current, min($previous[$j] + 1, $current[$j - 1] + 1, $previous[$j - 1] + $cost);
        }
        @previous = @current;
    }
    return $previous[-1];
}

my @words = ("kitten", "sitting", "saturday", "sunday", "intention", "execution", "apple");
my $total = 0;
$total += distance($words[$_ % 7], $words[$_ % 5]) for 1 .. $n;
print "$total\n";
