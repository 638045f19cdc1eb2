# A words service that is none; its argument is its manner.
use IO::Socket::INET;
my ($manner) = @ARGV;
$SIG{PIPE} = "IGNORE";
my $listener = IO::Socket::INET->new(LocalAddr => "127.0.0.1:1502", Listen => 8, ReuseAddr => 1);
while (my $client = $listener->accept) {
    while (sysread($client, my $request, 260)) {
        my ($transaction, $function, $count) = (unpack "nnnCCnn", $request)[0, 4, 6];
        my $body = pack "CC/a*", $function, $manner eq "wild" ? "\xff\xff" x $count : "";
        $body = "\1\1\1" if $function == 1;
        $body = substr $request, 7, 5 if $function == 16;
        syswrite $client, pack "nnn/a*", $transaction, 0, "\1$body";
    }
}
