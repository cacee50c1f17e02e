use strict;
use warnings;

my $n = shift // 900000;

my %counts;
my $seed = 42;
for my $i (1 .. $n) {
    $seed = ($seed * 3877 + 29573) % 139968;
    my $word  = "word" . $seed % 5000;
    my $count = $counts{$word};
    if ($count) {
        $counts{$word} = $count + 1;
    } else {
        $counts{$word} = 1;
    }
}

my ($distinct, $most, $letters) = (0, 0, 0);
while (my ($word, $count) = each %counts) {
    $distinct++;
    $letters += length($word) * $count;
    $most = $count if $count > $most;
}
print "$distinct $most $letters\n";
