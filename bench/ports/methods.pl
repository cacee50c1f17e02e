use strict;
use warnings;

my $n = shift // 1000000;

package Plain;

sub new {
    my ($class) = @_;
    return bless {total => 0}, $class;
}

sub add {
    my ($self, $amount) = @_;
    $self->{total} = $self->{total} + $amount;
}

sub read {
    my ($self) = @_;
    return $self->{total};
}

package Wrapped;

sub new {
    my ($class, $limit) = @_;
    return bless {total => 0, limit => $limit}, $class;
}

sub add {
    my ($self, $amount) = @_;
    my $total = $self->{total} + $amount;
    $total -= $self->{limit} if $total >= $self->{limit};
    $self->{total} = $total;
}

sub read {
    my ($self) = @_;
    return $self->{total};
}

package main;

my $plain   = Plain->new;
my $wrapped = Wrapped->new(997);
my $sum     = 0;
for my $i (1 .. $n) {
    $plain->add(1);
    $wrapped->add(7);
    $sum += ($plain->read + $wrapped->read) % 3;
}
print join(" ", $plain->read, $wrapped->read, $sum), "\n";
