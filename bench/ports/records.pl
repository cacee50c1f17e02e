use strict;
use warnings;

my $n = shift // 30000;

my @regions = ("north", "south", "east", "west");

sub unpaid_above {
    my ($orders, $amount) = @_;
    return grep { !$_->{paid} && $_->{amount} > $amount } @$orders;
}

my ($seed, @orders) = (42);
for my $i (1 .. $n) {
    $seed = $seed * 16807 % 2147483647;
    push @orders, {id => $i, region => $regions[$seed % 4], amount => $seed % 500, paid => $seed % 3 == 0};
}

my $kept = 0;
for my $round (1 .. 30) {
    for my $order (unpaid_above(\@orders, 450)) {
        $order->{amount} -= 30;
        $order->{paid} = $order->{amount} < 430;
        $kept++;
    }
    for my $order (@orders) {
        $order->{amount} += 1;
    }
}

my %totals;
$totals{$_->{region}} += $_->{amount} for @orders;
print join(" ", $kept, @totals{@regions}), "\n";
