use strict;
use warnings;

my $n = shift // 60000;

sub split_at {
    my ($text, $separator) = @_;
    my ($from, @fields) = (0);
    my $first = index($text, $separator, $from);
    while ($first >= 0) {
        push @fields, substr($text, $from, $first - $from);
        $from  = $first + length $separator;
        $first = index($text, $separator, $from);
    }
    push @fields, substr($text, $from);
    return @fields;
}

my ($seed, $count, $letters) = (42, 0, 0);
for my $i (1 .. $n) {
    $seed = $seed * 16807 % 2147483647;
    my @fields = split_at("$i, name" . $seed % 100 . ", $seed, , true, last one", ", ");
    $count += @fields;
    $letters += length($fields[1]) + length($fields[5]);
}
print "$count $letters\n";
