use strict;
use warnings;
use POSIX qw(floor);

my $n = shift // 40000;

sub new_body {
    my ($x, $y, $z, $vx, $vy, $vz, $mass) = @_;
    return {x => $x, y => $y, z => $z, vx => $vx, vy => $vy, vz => $vz, mass => $mass};
}

sub square_root {
    my ($x, $guess) = @_;
    my $root   = $guess;
    my $change = 1;
    while ($change > 0.000000001 || $change < -0.000000001) {
        my $better = 0.5 * ($root + $x / $root);
        $change = $better - $root;
        $root   = $better;
    }
    return $root;
}

sub balance {
    my ($bodies) = @_;
    my ($px, $py, $pz) = (0, 0, 0);
    for my $body (@$bodies) {
        $px += $body->{vx} * $body->{mass};
        $py += $body->{vy} * $body->{mass};
        $pz += $body->{vz} * $body->{mass};
    }
    my $star = $bodies->[0];
    $star->{vx} -= $px / $star->{mass};
    $star->{vy} -= $py / $star->{mass};
    $star->{vz} -= $pz / $star->{mass};
}

sub advance {
    my ($bodies, $distances, $dt) = @_;
    my $last = $#$bodies;
    my $pair = 0;
    for my $i (0 .. $last) {
        my $a = $bodies->[$i];
        for my $j ($i + 1 .. $last) {
            my $b        = $bodies->[$j];
            my $dx       = $a->{x} - $b->{x};
            my $dy       = $a->{y} - $b->{y};
            my $dz       = $a->{z} - $b->{z};
            my $squared  = $dx * $dx + $dy * $dy + $dz * $dz;
            my $distance = square_root($squared, $distances->[$pair]);
            $distances->[$pair] = $distance;
            $pair++;
            my $pull      = $dt / ($squared * $distance);
            my $pull_on_a = $b->{mass} * $pull;
            my $pull_on_b = $a->{mass} * $pull;
            $a->{vx} -= $dx * $pull_on_a;
            $a->{vy} -= $dy * $pull_on_a;
            $a->{vz} -= $dz * $pull_on_a;
            $b->{vx} += $dx * $pull_on_b;
            $b->{vy} += $dy * $pull_on_b;
            $b->{vz} += $dz * $pull_on_b;
        }
    }
    for my $body (@$bodies) {
        $body->{x} += $dt * $body->{vx};
        $body->{y} += $dt * $body->{vy};
        $body->{z} += $dt * $body->{vz};
    }
}

sub energy {
    my ($bodies) = @_;
    my $sum = 0;
    for my $i (0 .. $#$bodies) {
        my $a = $bodies->[$i];
        $sum += 0.5 * $a->{mass}
            * ($a->{vx} * $a->{vx} + $a->{vy} * $a->{vy} + $a->{vz} * $a->{vz});
        for my $j ($i + 1 .. $#$bodies) {
            my $b  = $bodies->[$j];
            my $dx = $a->{x} - $b->{x};
            my $dy = $a->{y} - $b->{y};
            my $dz = $a->{z} - $b->{z};
            $sum -= $a->{mass} * $b->{mass} / square_root($dx * $dx + $dy * $dy + $dz * $dz, 1);
        }
    }
    return $sum;
}

sub millionths {
    my ($x) = @_;
    return floor($x * 1000000 + 0.5);
}

my $bodies = [
    new_body(0, 0, 0, 0, 0, 0, 39.4784),
    new_body(5.2, 0.1, 0.05, -0.02, 2.75, 0.01, 0.0377),
    new_body(-6.7, 6.8, -0.1, -1.43, -1.42, 0.02, 0.0113),
    new_body(0.4, -19.2, 0.3, 1.43, 0.03, -0.01, 0.0017),
    new_body(-21.3, -21.2, 0.6, 0.8, -0.81, 0.015, 0.002),
];
my @distances;
push @distances, 1 for 1 .. 10;

balance($bodies);
my $before = energy($bodies);
for my $step (1 .. $n) {
    advance($bodies, \@distances, 0.01);
}
print join(" ", millionths($before), millionths(energy($bodies)), millionths($bodies->[1]{x})), "\n";
