use strict;
use warnings;

my $n = shift // 130;

my @syllables = ("ba", "ke", "lo", "mi", "ru", "sa", "ti");
my ($seed, @pieces) = (42);
for my $i (1 .. 3000) {
    $seed = $seed * 16807 % 2147483647;
    push @pieces, $syllables[$seed % 7] . $syllables[$seed % 5] . $syllables[$seed % 3];
}
my $text = join(" ", @pieces) . ".";

my ($distinct, $checksum) = (0, 0);
for my $round (1 .. $n) {
    my %counts;
    $counts{$1}++ while $text =~ /([A-Za-z]+)/g;
    my @list = sort { $counts{$b} <=> $counts{$a} || $a cmp $b } keys %counts;
    $distinct += @list;
    $checksum = ($checksum * 31 + $counts{$list[0]} + length $list[1]) % 1000003;
}
print "$distinct $checksum\n";
