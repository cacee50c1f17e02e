use strict;
use warnings;

my $n = shift // 200000;

for my $i (1 .. $n) {
    print "line $i\t", $i * 3, "\tend\n";
}
