use strict;
use warnings;

my $n = shift // 9;

my ($checksum, $orders) = (0, 0);

sub permute {
    my ($items, $from, $size) = @_;
    if ($from == $size - 1) {
        $orders++;
        $checksum = ($checksum * 3 + $items->[0] * $items->[$size - 1]) % 1000003;
        return;
    }
    for my $i ($from .. $size - 1) {
        ($items->[$from], $items->[$i]) = ($items->[$i], $items->[$from]);
        permute($items, $from + 1, $size);
        ($items->[$from], $items->[$i]) = ($items->[$i], $items->[$from]);
    }
    return;
}

permute([1 .. $n], 0, $n);
print "$orders $checksum\n";
