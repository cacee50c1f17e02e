use strict;
use warnings;

my $n = shift // 200;

my @pieces;
for my $i (1 .. $n * 2500) {
    push @pieces, "item" . $i % 1000;
}
my $joined = join ",", @pieces;

my ($length, $last) = (0, "");
for my $round (1 .. $n) {
    my $text = "";
    for my $i (1 .. 1000) {
        $text .= "<" . $i % 10 . ">";
    }
    $length += length $text;
    $last = $text;
}
print join(" ", length $joined, substr($joined, -16), $length, substr($last, -9)), "\n";
