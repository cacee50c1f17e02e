use strict;
use warnings;

my $n = shift // 40000;

sub is_empty {
    my ($table) = @_;
    keys %$table;    # starts again from the first
    while (defined(my $key = each %$table)) {
        return 0;
    }
    return 1;
}

sub first_word {
    my ($line) = @_;
    my $first = "";
    while ($line =~ /([A-Za-z]+)/g) {
        $first = $1;
        last;
    }
    return $first;
}

sub position {
    my ($list, $wanted) = @_;
    for my $i (0 .. $#$list) {
        return $i + 1 if $list->[$i] == $wanted;
    }
    return 0;
}

my ($line, %fields, @items) = ("12: ");
for my $i (1 .. 60) {
    $line .= "word$i ";
    $fields{"field$i"} = $i;
    push @items, $i * 3 % 61;
}

my ($empty, $letters, $positions) = (0, 0, 0);
for my $i (1 .. $n) {
    $empty++ if is_empty(\%fields);
    $empty++ if is_empty({});
    $letters += length first_word($line);
    $positions += position(\@items, $i % 10 + 1);
}
print "$empty $letters $positions\n";
