#!/usr/bin/perl
# An SMSC made with Net::SMPP: serves one connection, delivers a message behind the bind and a receipt behind each
# submit that asks for one. Prints its port, and then every PDU that it gets as a line of JSON.
use strict;
use warnings;
use JSON::PP;
use Net::SMPP;

$| = 1;
my $json = JSON::PP->new->canonical;
my $listener = Net::SMPP->new_listen('127.0.0.1', port => 0, async => 1, smpp_version => 0x34) or die "cannot listen: $!\n";
print $listener->sockport, "\n";
my $smpp = $listener->accept or die "cannot accept: $!\n";
my $id = 0x7F;

sub deliver {
    my ($text, $esm_class) = @_;
    $smpp->deliver_sm(source_addr => '31611111111', source_addr_ton => 1, source_addr_npi => 1, destination_addr => '1234',
        esm_class => $esm_class, short_message => $text);
}

my %answers = (
    bind_transceiver => sub {
        $smpp->bind_transceiver_resp(seq => $_[0]{seq}, system_id => 'perl');
        deliver('Hello from Perl', 0);
    },
    submit_sm => sub {
        my ($pdu) = @_;
        $smpp->submit_sm_resp(seq => $pdu->{seq}, message_id => sprintf('%X', ++$id));
        deliver("id:$id sub:001 dlvrd:001 submit date:2611211200 done date:2611211201 stat:DELIVRD err:000 text:", 4)
            if $pdu->{registered_delivery};
    },
    enquire_link => sub { $smpp->enquire_link_resp(seq => $_[0]{seq}) },
    unbind => sub { $smpp->unbind_resp(seq => $_[0]{seq}) },
);

while (my $pdu = $smpp->read_pdu) {
    my $name = Net::SMPP::pdu_tab->{$pdu->{cmd}}{cmd};
    my %shown = map { defined $pdu->{$_} ? ($_ => $pdu->{$_}) : () }
        qw(status system_id password interface_version source_addr destination_addr dest_addr_ton dest_addr_npi esm_class
        registered_delivery data_coding);
    $shown{text} = unpack('H*', $pdu->{short_message}) if defined $pdu->{short_message};
    print $json->encode({pdu => $name, %shown}), "\n";
    $answers{$name}->($pdu) if $answers{$name};
    last if $name eq 'unbind';
}
