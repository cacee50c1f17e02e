use strict;
use warnings;

my $n = shift // 10;

sub build {
    my ($depth) = @_;
    return [undef, undef] if $depth == 0;
    return [build($depth - 1), build($depth - 1)];
}

sub count_nodes {
    my ($tree) = @_;
    return 1 + count_nodes($tree->[0]) + count_nodes($tree->[1]) if $tree->[0];
    return 1;
}

my $total = 0;
for my $round (1 .. $n) {
    $total += count_nodes(build(15));
}
print "$total\n";
