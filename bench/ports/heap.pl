use strict;
use warnings;

my $n = shift // 80000;

sub heap_push {
    my ($heap, $event) = @_;
    my $i = @$heap;
    push @$heap, $event;
    while ($i > 0) {
        my $parent = int(($i - 1) / 2);
        last if $heap->[$parent]{time} <= $event->{time};
        $heap->[$i] = $heap->[$parent];
        $i = $parent;
    }
    $heap->[$i] = $event;
    return;
}

sub heap_pop {
    my ($heap) = @_;
    my $event = pop @$heap;
    my $size  = @$heap;
    return $event if $size == 0;
    my $first = $heap->[0];
    my ($i, $child) = (0, 1);
    while ($child < $size) {
        $child++ if $child + 1 < $size && $heap->[$child + 1]{time} < $heap->[$child]{time};
        last if $event->{time} <= $heap->[$child]{time};
        $heap->[$i] = $heap->[$child];
        $i     = $child;
        $child = 2 * $i + 1;
    }
    $heap->[$i] = $event;
    return $first;
}

my ($heap, $seed) = ([], 42);
for my $i (1 .. 2000) {
    $seed = $seed * 16807 % 2147483647;
    heap_push($heap, {time => $seed % 100000, id => $i});
}
my $checksum = 0;
for my $i (1 .. $n) {
    my $event = heap_pop($heap);
    $checksum = ($checksum * 31 + $event->{time} + $event->{id}) % 1000003;
    $seed = $seed * 16807 % 2147483647;
    heap_push($heap, {time => $event->{time} + $seed % 1000, id => $event->{id}});
}
print "$checksum\n";
