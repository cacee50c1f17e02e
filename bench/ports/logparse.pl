use strict;
use warnings;

my $n = shift // 40000;

my @levels = ("INFO", "WARN", "ERROR");
my @paths  = ("/", "/index.html", "/api/items", "/login");

my ($seed, @lines) = (42);
for my $i (1 .. $n) {
    $seed = $seed * 16807 % 2147483647;
    push @lines,
        "2024-05-" . (10 + $seed % 20) . " 10:" . (10 + $seed % 50) . " [$levels[$seed % 3]] GET $paths[$seed % 4]"
        . " user=u" . $seed % 1000 . " took=" . $seed % 900 . "ms";
}

my (%counts, $slowest);
my ($longest, $total, $letters) = (0, 0, 0);
for my $line (@lines) {
    my ($day, $minute, $level, $path, $user, $took) = $line =~
        /^[0-9]+-[0-9]+-([0-9]+) [0-9]+:([0-9]+) \[([A-Za-z]+)\] [A-Za-z]+ (\S+) user=(\w+) took=([0-9]+)ms$/;
    $counts{$level}++;
    $total += $took;
    $letters += length($path) + $day + $minute;
    if ($took > $longest) {
        $longest = $took;
        $slowest = $user;
    }
}
print join(" ", @counts{@levels}, $total, $letters, $slowest), "\n";
