use strict;
use warnings;

my $n = shift // 60000;

sub run {
    my ($program) = @_;
    my ($pc, $steps, @stack) = (0, 0);
    my @memory = (0, 0, 0);
    while (1) {
        my $instruction = $program->[$pc];
        my $name        = $instruction->{name};
        $steps++;
        $pc++;
        if ($name eq "push") {
            push @stack, $instruction->{value};
        } elsif ($name eq "load") {
            push @stack, $memory[$instruction->{value}];
        } elsif ($name eq "store") {
            $memory[$instruction->{value}] = pop @stack;
        } elsif ($name eq "add") {
            my $right = pop @stack;
            $stack[-1] += $right;
        } elsif ($name eq "modulo") {
            my $right = pop @stack;
            $stack[-1] %= $right;
        } elsif ($name eq "less") {
            my $right = pop @stack;
            $stack[-1] = $stack[-1] < $right;
        } elsif ($name eq "jumpif") {
            $pc = $instruction->{value} if pop @stack;
        } else {
            return ($memory[1], $steps);
        }
    }
}

my @program = (
    {name => "load", value => 0}, {name => "push", value => 1}, {name => "add"}, {name => "store", value => 0},
    {name => "load", value => 1}, {name => "load", value => 0}, {name => "add"}, {name => "push", value => 1009},
    {name => "modulo"}, {name => "store", value => 1},
    {name => "load", value => 0}, {name => "push", value => $n}, {name => "less"}, {name => "jumpif", value => 0},
    {name => "halt"},
);
print join(" ", run(\@program)), "\n";
