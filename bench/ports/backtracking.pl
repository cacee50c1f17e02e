use strict;
use warnings;

my $n = shift // 60;

my $size = 4;

sub new_flags {
    return [map { [(0) x $size] } 1 .. $size];
}

my ($rows, $columns, $boxes) = (new_flags(), new_flags(), new_flags());
my $box_of = [[0, 0, 1, 1], [0, 0, 1, 1], [2, 2, 3, 3], [2, 2, 3, 3]];
my $steps = 0;

sub fill {
    my ($row, $column) = @_;
    if ($column == $size) {
        ($row, $column) = ($row + 1, 0);
        return 1 if $row == $size;
    }
    my $found = 0;
    my ($in_row, $in_column, $in_box) = ($rows->[$row], $columns->[$column], $boxes->[$box_of->[$row][$column]]);
    for my $symbol (0 .. $size - 1) {
        $steps++;
        if (!$in_row->[$symbol] && !$in_column->[$symbol] && !$in_box->[$symbol]) {
            $in_row->[$symbol]    = 1;
            $in_column->[$symbol] = 1;
            $in_box->[$symbol]    = 1;
            $found += fill($row, $column + 1);
            $in_row->[$symbol]    = 0;
            $in_column->[$symbol] = 0;
            $in_box->[$symbol]    = 0;
        }
    }
    return $found;
}

my $found = 0;
$found += fill(0, 0) for 1 .. $n;
print "$found $steps\n";
