use strict;
use warnings;

my $n = shift // 1500;

my @digits = (1);
for my $factor (2 .. $n) {
    my $carry = 0;
    for my $digit (@digits) {
        my $product = $digit * $factor + $carry;
        $digit = $product % 10000;
        $carry = int($product / 10000);
    }
    while ($carry > 0) {
        push @digits, $carry % 10000;
        $carry = int($carry / 10000);
    }
}
my ($sum, $checksum) = (0, 0);
for my $digit (@digits) {
    $sum += $digit;
    $checksum = ($checksum * 10000 + $digit) % 1000003;
}
print scalar(@digits), " $sum $checksum\n";
