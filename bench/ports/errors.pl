use strict;
use warnings;

my $n = shift // 60000;

sub checked {
    my ($amount, $limit) = @_;
    die "amount $amount above $limit\n" if $amount > $limit;
    return $amount;
}

sub withdraw {
    my ($account, $amount) = @_;
    $account->{balance} -= checked($amount, 50);
    return $account->{balance};
}

my $account = {balance => 0};
my ($failed, $letters) = (0, 0);
for my $i (1 .. $n) {
    if (!defined eval { withdraw($account, $i % 101) }) {
        $failed++;
        $letters += length($@) - 1;
    }
}
print "$account->{balance} $failed $letters\n";
