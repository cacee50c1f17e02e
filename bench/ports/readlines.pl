use strict;
use warnings;

my $n = shift // 300;

my ($lines, $bytes, $longest) = (0, 0, 0);
for my $round (1 .. $n) {
    open my $file, "<", "bench/data/readings.txt" or die "no readings: $!";
    while (my $line = <$file>) {
        chomp $line;
        $lines++;
        $bytes += length $line;
        $longest = length $line if length $line > $longest;
    }
    close $file;
}
print "$lines $bytes $longest\n";
