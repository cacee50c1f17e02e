use strict;
use warnings;

my $n = shift // 150000;

my @shapes = (
    sub { return $_[0] },
    sub { return $n - $_[0] },
    sub { return 2 * $_[0] < $n ? $_[0] : $n - $_[0] },
    sub { return 7 },
    sub { return $_[0] % 1000 == 0 ? $_[0] - 500 : $_[0] },
);

my $checksum = 0;
for my $value_at (@shapes) {
    my @list = map { $value_at->($_) } 1 .. $n;
    @list = sort { $a <=> $b } @list;
    for (my $i = 0; $i < $n; $i += 100) {
        $checksum = ($checksum * 31 + $list[$i]) % 1000003;
    }
}
print "$checksum\n";
