use strict;
use warnings;

my $n = shift // 300000;

my (@numbers, @names);
my $seed = 42;
for my $i (1 .. $n) {
    $seed = ($seed * 16807) % 2147483647;
    push @numbers, $seed % 1000000;
}
for my $i (1 .. $n / 3) {
    $seed = ($seed * 16807) % 2147483647;
    push @names, "name" . $seed % 100000;
}

@numbers = sort { $a <=> $b } @numbers;
@names   = sort @names;

my $checksum = 0;
for (my $i = 0; $i < @numbers; $i += 1000) {
    $checksum = ($checksum * 31 + $numbers[$i]) % 1000003;
}
for (my $i = 0; $i < @names; $i += 1000) {
    $checksum = ($checksum * 31 + length $names[$i]) % 1000003;
}
my $middle = $names[$n / 6 - 1];
print "$numbers[0] $numbers[-1] $names[0] $names[-1] $middle $checksum\n";
