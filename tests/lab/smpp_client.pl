#!/usr/bin/perl
# A client made with Net::SMPP: binds, sends one message, answers what comes until its receipt is there, and unbinds.
# Prints every PDU that it gets as a line of JSON. Arguments: the port and the text.
use strict;
use warnings;
use JSON::PP;
use Net::SMPP;

my ($port, $text) = @ARGV;
my $json = JSON::PP->new->canonical;
my $smpp = Net::SMPP->new_connect('127.0.0.1', port => $port, async => 1, smpp_version => 0x34, system_id => 'perl',
    password => 'secret') or die "cannot connect: $!\n";

# The next PDU of that name; the ones before it are answered or shown as well.
sub await {
    my ($wanted) = @_;
    while (my $pdu = $smpp->read_pdu) {
        my $name = Net::SMPP::pdu_tab->{$pdu->{cmd}}{cmd};
        my %shown = map { defined $pdu->{$_} ? ($_ => $pdu->{$_}) : () }
            qw(status system_id message_id source_addr destination_addr esm_class data_coding short_message);
        print $json->encode({pdu => $name, %shown}), "\n";
        $smpp->deliver_sm_resp(seq => $pdu->{seq}, message_id => '') if $name eq 'deliver_sm';
        return if $name eq $wanted && (!exists $shown{esm_class} || $shown{esm_class} == 4);
    }
    die "the connection ended before $wanted\n";
}

$smpp->bind_transceiver;
await('bind_transceiver_resp');
$smpp->enquire_link;
await('enquire_link_resp');
$smpp->submit_sm(destination_addr => '31612345678', dest_addr_ton => 1, dest_addr_npi => 1, registered_delivery => 1,
    short_message => $text);
await('deliver_sm');
$smpp->unbind;
await('unbind_resp');
