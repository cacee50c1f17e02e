use strict;
use warnings;

my $n = shift // 150;

sub new_matrix {
    my ($size, $factor) = @_;
    my @rows;
    for my $i (1 .. $size) {
        push @rows, [map { ($i * $factor + $_ * 7) % 19 / 4 } 1 .. $size];
    }
    return \@rows;
}

sub multiply {
    my ($a, $b, $size) = @_;
    my @product;
    for my $i (0 .. $size - 1) {
        my $left = $a->[$i];
        my @row;
        for my $j (0 .. $size - 1) {
            my $sum = 0;
            for my $k (0 .. $size - 1) {
                $sum += $left->[$k] * $b->[$k][$j];
            }
            push @row, $sum;
        }
        push @product, \@row;
    }
    return \@product;
}

my $product = multiply(new_matrix($n, 3), new_matrix($n, 5), $n);
my $sum = 0;
for my $i (0 .. $n - 1) {
    $sum += $product->[$i][$i] * 16;
    $sum += $product->[0][$i] * 16;
}
print int($sum), "\n";
