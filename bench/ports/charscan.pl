use strict;
use warnings;

my $n = shift // 100;

sub make_lines {
    my @pieces = ("let ", "x", "(", "12", ")", " + ", "[", "name", "]", " * ", "375", "; ");
    my @lines;
    my $seed = 42;
    for my $i (1 .. 400) {
        my $line = "";
        for my $j (1 .. 20) {
            $seed = ($seed * 16807) % 2147483647;
            $line .= $pieces[$seed % 12];
        }
        push @lines, $line;
    }
    return @lines;
}

my @lines = make_lines();
my ($letters, $digits, $blanks, $others, $deepest) = (0, 0, 0, 0, 0);
for my $round (1 .. $n) {
    for my $line (@lines) {
        my $depth = 0;
        for my $i (0 .. length($line) - 1) {
            my $c = substr($line, $i, 1);
            if ($c ge "a" && $c le "z") {
                $letters++;
            } elsif ($c ge "0" && $c le "9") {
                $digits++;
            } elsif ($c eq " ") {
                $blanks++;
            } elsif ($c eq "(") {
                $depth++;
                $deepest = $depth if $depth > $deepest;
            } elsif ($c eq ")") {
                $depth--;
            } else {
                $others++;
            }
        }
    }
}
print "$letters $digits $blanks $others $deepest\n";
