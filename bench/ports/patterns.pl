use strict;
use warnings;

my $n = shift // 20000;

sub make_lines {
    my @levels = ("info", "debug", "warning", "error");
    my @parts  = ("disk", "network", "session", "cache", "worker");
    my @lines;
    my $seed = 42;
    for my $i (1 .. $n) {
        $seed = ($seed * 16807) % 2147483647;
        push @lines,
            "2024-05-" . (10 + $i % 20) . " 10:" . (10 + $seed % 50) . " "
            . $levels[$seed % 4] . " " . $parts[$seed % 5] . ": request id=" . $seed
            . " took=" . ($seed % 900) . " ms, " . ($i % 3) . " retries";
    }
    return @lines;
}

my ($errors, $days, $times, $fields, $words, $masked) = (0, 0, 0, 0, 0, 0);
for my $line (make_lines()) {
    $errors++ if index($line, " error ") >= 0;
    my ($year, $month, $day) = $line =~ /^([0-9]+)-([0-9]+)-([0-9]+)/;
    $days += $day;
    $times += $1 if $line =~ /took=([0-9]+)/;
    while ($line =~ /([A-Za-z]+)=([A-Za-z0-9_]+)/g) {
        $fields += length($1) + length($2);
    }
    while ($line =~ /[A-Za-z]+/g) {
        $words++;
    }
    (my $text = $line) =~ s/[0-9]+/#/g;
    $masked += length $text;
}
print "$errors $days $times $fields $words $masked\n";
