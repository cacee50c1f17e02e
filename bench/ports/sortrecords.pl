use strict;
use warnings;

my $n = shift // 50000;

my ($seed, @people) = (42);
for my $i (1 .. $n) {
    $seed = $seed * 16807 % 2147483647;
    push @people, {name => "name" . $seed % 500, age => $seed % 80, id => $i};
}
@people = sort { $b->{age} <=> $a->{age} || $a->{name} cmp $b->{name} || $a->{id} <=> $b->{id} } @people;

my $checksum = 0;
$checksum = ($checksum * 31 + $_->{id}) % 1000003 for @people;
print "$people[0]{name} $people[-1]{name} $checksum\n";
