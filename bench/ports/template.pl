use strict;
use warnings;

my $n = shift // 25000;

my $page = "Dear {name},\nyour order {order} of {count} {item} is on its way to {town}.\n"
    . "It arrives in {days} days, {name}. Yours, the {item} team\n";
my @names    = ("name", "order", "count", "item", "town", "days");
my %patterns = map { $_ => qr/\{$_\}/ } @names;

sub fill {
    my ($text, $values) = @_;
    for my $name (@names) {
        $text =~ s/$patterns{$name}/$values->{$name}/g;
    }
    return $text;
}

my ($length, $last) = (0, "");
for my $i (1 .. $n) {
    $last = fill($page, {name => "Ann" . $i % 10, order => "A-$i", count => $i % 7, item => "lamp", town => "Ulm", days => 3});
    $length += length $last;
}
print "$length ", substr($last, 0, 10), "\n";
