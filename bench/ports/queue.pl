use strict;
use warnings;

my $n = shift // 1000000;

my @queue = (1);
my ($sum, $longest) = (0, 0);
while (@queue) {
    my $node = shift @queue;
    $sum = ($sum * 7 + $node) % 1000003;
    push @queue, 2 * $node     if 2 * $node <= $n;
    push @queue, 2 * $node + 1 if 2 * $node + 1 <= $n;
    $longest = @queue - 1 if @queue - 1 > $longest;
}
print "$sum $longest\n";
