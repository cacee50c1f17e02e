use strict;
use warnings;

my $n = shift // 600;

my %letters = map { $_ => 1 } "a" .. "z", "_";
my %digits  = map { $_ => 1 } 0 .. 9;
my %blanks  = map { $_ => 1 } " ", "\t", "\n";

sub tokenise {
    my ($text) = @_;
    my ($i, $size, @tokens) = (0, length $text);
    while ($i < $size) {
        my $byte = substr($text, $i, 1);
        my $from = $i;
        $i++;
        if ($blanks{$byte}) {
            $i++ while $i < $size && $blanks{substr($text, $i, 1)};
        } elsif ($letters{$byte}) {
            $i++ while $i < $size && ($letters{substr($text, $i, 1)} || $digits{substr($text, $i, 1)});
            push @tokens, {kind => "name", text => substr($text, $from, $i - $from)};
        } elsif ($digits{$byte}) {
            $i++ while $i < $size && $digits{substr($text, $i, 1)};
            push @tokens, {kind => "number", text => substr($text, $from, $i - $from)};
        } else {
            push @tokens, {kind => "sign", text => $byte};
        }
    }
    return @tokens;
}

my $text = join "", map { "let total_$_ = (count + " . $_ * 37 . ") * price[$_];\n" } 1 .. 20;
my (%counts, $length);
for my $round (1 .. $n) {
    for my $token (tokenise($text)) {
        $counts{$token->{kind}}++;
        $length += length $token->{text};
    }
}
print "$counts{name} $counts{number} $counts{sign} $length\n";
