use strict;
use warnings;

my $limit = shift // 2000000;
my @is_prime = (0, 0);
for my $n (2 .. $limit) {
    $is_prime[$n] = 1;
}

my $factor = 2;
while ($factor * $factor <= $limit) {
    if ($is_prime[$factor]) {
        for (my $multiple = $factor * $factor; $multiple <= $limit; $multiple += $factor) {
            $is_prime[$multiple] = 0;
        }
    }
    $factor++;
}

my $count = 0;
for my $n (1 .. $limit) {
    $count++ if $is_prime[$n];
}
print "$count\n";
