use strict;
use warnings;

my $n = shift // 200000;

# A named comparator: the interpreter would replace the block { $b <=> $a } by a built-in order.
sub descending {
    return $b <=> $a;
}

my @values;
my $seed = 42;
for my $i (1 .. $n) {
    $seed = ($seed * 16807) % 2147483647;
    push @values, $seed % 1000000;
}

@values = sort descending @values;

my $checksum = 0;
for (my $i = 0; $i < @values; $i += 1000) {
    $checksum = ($checksum * 31 + $values[$i]) % 1000003;
}
print "$values[0] $values[-1] $checksum\n";
