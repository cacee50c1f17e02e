use strict;
use warnings;

my $n = shift // 150;

sub element {
    my ($i, $j) = @_;
    return 1 / (($i + $j) * ($i + $j + 1) / 2 + $i + 1);
}

sub multiply {
    my ($vector, $size) = @_;
    my @result;
    for my $i (0 .. $size - 1) {
        my $sum = 0;
        for my $j (0 .. $size - 1) {
            $sum += element($i, $j) * $vector->[$j];
        }
        push @result, $sum;
    }
    return \@result;
}

my $vector = [(1) x $n];
for my $round (1 .. 40) {
    $vector = multiply($vector, $n);
    my $largest = $vector->[0];
    $_ /= $largest for @$vector;
}
my $sum = 0;
$sum += $_ for @$vector;
print int($sum * 100000000 + 0.5), "\n";
