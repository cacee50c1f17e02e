use strict;
use warnings;

my $n = shift // 60000;

my @texts = ("", "x", "key = value", "a longer line of text", "tab\tinside");
my @padded = map { " " x ($_ % 7) . $texts[$_ % 5] . "\t" x ($_ % 3) . " " x ($_ % 4) } 1 .. $n;

my ($once, $twice) = (0, 0);
for my $text (@padded) {
    my ($inner) = $text =~ /^\s*(.*?)\s*$/;
    $once += length $inner;
    my $both = $text;
    $both =~ s/^\s+//;
    $both =~ s/\s+$//;
    $twice += length $both;
}
print "$once $twice\n";
