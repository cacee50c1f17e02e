use strict;
use warnings;

my $n = shift // 3000;

my ($hits, $above, $rest) = (0, 0, 0);
for my $i (1 .. $n) {
    for my $j (1 .. $n) {
        if (($i * $j) % 7 == 3) {
            $hits++;
        } elsif ($i < $j) {
            $above++;
        } else {
            $rest++;
        }
    }
}
print "$hits $above $rest\n";
