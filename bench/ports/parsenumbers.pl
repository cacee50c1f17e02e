use strict;
use warnings;
use Scalar::Util qw(looks_like_number);

my $n = shift // 400000;

my @texts;
for my $i (1 .. 1000) {
    my $text = $i * 7919 % 100000;
    if ($i % 3 == 0) {
        $text .= "." . $i % 4 * 25;
    } elsif ($i % 10 == 0) {
        $text .= "x";
    }
    push @texts, "$text";
}

my ($sum, $refused, $letters) = (0, 0, 0);
for my $i (1 .. $n) {
    my $text = $texts[$i % 1000];
    if (looks_like_number($text)) {
        $sum += $text;
    } else {
        $refused++;
    }
    $letters += length "$i";
}
print int($sum * 100 + 0.5), " $refused $letters\n";
