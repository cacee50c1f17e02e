use strict;
use warnings;
no warnings 'recursion';

my $n = shift // 32;

sub fib {
    my ($n) = @_;
    return $n if $n < 2;
    return fib($n - 1) + fib($n - 2);
}

print fib($n), "\n";
