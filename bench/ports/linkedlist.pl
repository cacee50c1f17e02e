use strict;
use warnings;

my $n = shift // 100;

my $sum = 0;
for my $round (1 .. $n) {
    my $first;
    for my $i (1 .. 5000) {
        $first = {value => $i, rest => $first};
    }
    my $reversed;
    while ($first) {
        my $rest = $first->{rest};
        $first->{rest} = $reversed;
        $reversed      = $first;
        $first         = $rest;
    }
    my ($node, $place) = ($reversed, 0);
    while ($node) {
        $place++;
        $sum  = ($sum + $node->{value} * $place) % 1000003;
        $node = $node->{rest};
    }
}
print "$sum\n";
