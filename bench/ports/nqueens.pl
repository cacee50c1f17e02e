use strict;
use warnings;

my $n = shift // 20;

my $size = 9;

sub clear_flags {
    my ($count) = @_;
    my @flags;
    push @flags, 0 for 0 .. $count;
    return \@flags;
}

sub place {
    my ($row, $columns, $rising, $falling) = @_;
    return 1 if $row > $size;
    my $found = 0;
    for my $column (1 .. $size) {
        my $up   = $row + $column;
        my $down = $row - $column + $size;
        unless ($columns->[$column] || $rising->[$up] || $falling->[$down]) {
            $columns->[$column] = 1;
            $rising->[$up]      = 1;
            $falling->[$down]   = 1;
            $found += place($row + 1, $columns, $rising, $falling);
            $columns->[$column] = 0;
            $rising->[$up]      = 0;
            $falling->[$down]   = 0;
        }
    }
    return $found;
}

my $total = 0;
for my $round (1 .. $n) {
    $total += place(1, clear_flags($size), clear_flags(2 * $size), clear_flags(2 * $size));
}
print "$total\n";
