use strict;
use warnings;

my $n = shift // 1500000;

sub new_counter {
    my ($step) = @_;
    my $count = 0;
    return sub {
        $count = $count + $step;
        return $count;
    };
}

my ($by_one, $by_three) = (new_counter(1), new_counter(3));
my $eighths = 0;
for my $i (1 .. $n) {
    $eighths++ if ($by_one->() + $by_three->()) % 8 == 0;
}

my $total = 0;
for my $i (1 .. $n / 6) {
    my $counter = new_counter($i % 10);
    $counter->();
    $counter->();
    $total += $counter->();
}
print join(" ", $by_one->(), $by_three->(), $eighths, $total), "\n";
