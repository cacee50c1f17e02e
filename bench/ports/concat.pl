use strict;
use warnings;

my $n = shift // 120000;

my $length = 0;
for my $i (1 .. $n) {
    $length += length join(";", "id", $i, "name", $i % 10, "end");
}
my @list = map { "item$_" } 1 .. 1000;
for my $round (1 .. $n / 50) {
    $length += length join(", ", @list);
}
print "$length\n";
