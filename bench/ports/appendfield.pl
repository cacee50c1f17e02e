use strict;
use warnings;

my $n = shift // 120;

my ($length, @letters) = (0, "a", "b", "c");
for my $round (1 .. $n) {
    my $page    = {title => "page", text => ""};
    my @columns = ("", "");
    for my $i (1 .. 2500) {
        $page->{text} .= "<" . $i % 10 . ">";
        $columns[$i % 2] .= $letters[$i % 3];
    }
    $length += length($page->{text}) + length($columns[0]) * 2 + length($columns[1]);
}
print "$length\n";
