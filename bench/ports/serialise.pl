use strict;
use warnings;

my $n = shift // 6000;

sub write_value {
    my ($value, $parts) = @_;
    if (ref $value) {
        push @$parts, "l";
        write_value($_, $parts) for @$value;
        push @$parts, "e";
    } elsif ($value =~ /^[0-9]+$/) {
        push @$parts, "i${value}e";
    } else {
        push @$parts, length($value) . ":$value";
    }
    return;
}

sub read_value {
    my ($text, $position) = @_;
    my $mark = substr($text, $position, 1);
    if ($mark eq "i") {
        my $last = index($text, "e", $position);
        return (substr($text, $position + 1, $last - $position - 1) + 0, $last + 1);
    } elsif ($mark eq "l") {
        my @list;
        $position++;
        while (substr($text, $position, 1) ne "e") {
            (my $item, $position) = read_value($text, $position);
            push @list, $item;
        }
        return (\@list, $position + 1);
    }
    my $colon  = index($text, ":", $position);
    my $length = substr($text, $position, $colon - $position);
    return (substr($text, $colon + 1, $length), $colon + 1 + $length);
}

my ($bytes, $sum) = (0, 0);
for my $i (1 .. $n) {
    my $record = [$i, "name$i", ["red", "green", [$i * 3, $i * 7], ""], [[], "end"]];
    my @parts;
    write_value($record, \@parts);
    my $text = join "", @parts;
    my ($copy) = read_value($text, 0);
    $bytes += length $text;
    $sum   += $copy->[0] + $copy->[2][2][1] + length($copy->[1]) + length($copy->[3][1]);
}
print "$bytes $sum\n";
