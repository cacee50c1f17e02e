use strict;
use warnings;

my $n = shift // 300000;

my ($length, @names) = (0, "first", "second", "third");
for my $i (1 .. $n) {
    my $line = sprintf "%d: %s has %d of %d (%s)", $i, $names[$i % 3], $i % 77, $n, $i % 2 == 0 ? "true" : "false";
    $length += length $line;
}
print "$length\n";
