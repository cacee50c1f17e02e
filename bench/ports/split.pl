use strict;
use warnings;

my $n = shift // 60000;

my ($seed, $count, $letters) = (42, 0, 0);
for my $i (1 .. $n) {
    $seed = $seed * 16807 % 2147483647;
    my @fields = ("$i,name" . $seed % 100 . ",$seed,true,last one") =~ /[^,]+/g;
    my @words = ("  the " . $seed % 100 . " words of\ta line ") =~ /\S+/g;
    $count += @fields + @words;
    $letters += length($fields[1]) + length($words[1]);
}
print "$count $letters\n";
