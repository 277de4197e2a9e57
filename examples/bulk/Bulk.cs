// Sends one text to all numbers of a file, a line each, at a steady rate, and tells at the end what became of it.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Bulk.cs
using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Text.RegularExpressions;
using NeltCtrl;

static class Program
{
    static readonly SmsProtocolSmpp smpp = new SmsProtocolSmpp();
    static readonly Regex beyondGsm = new Regex(
        @"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
        @"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");

    static void Check(string what)
    {
        if (smpp.LastError == 0) return;
        Console.WriteLine(what + " failed: " + smpp.LastError + " " + smpp.GetErrorDescription(smpp.LastError));
        Environment.Exit(1);
    }

    static ISmsDeliveryStatus StatusOf(string reference)
    {
        var status = smpp.QueryStatus(reference, 0) as ISmsDeliveryStatus;
        Check("QueryStatus");
        return status;
    }

    // The references of what was sent.
    static List<string> SendAll(string[] recipients, string text)
    {
        var message = new SmsMessage
        {
            Data = text,
            Format = (int)(beyondGsm.IsMatch(text) ? SmsMessageFormat.asMESSAGEFORMAT_UNICODE_MULTIPART
                                                  : SmsMessageFormat.asMESSAGEFORMAT_TEXT_MULTIPART),
            RequestDeliveryStatus = 1
        };
        object argument = message;
        var sent = new List<string>();
        var clock = Stopwatch.StartNew();
        foreach (string recipient in recipients)
        {
            message.Recipient = recipient;
            string reference = smpp.Send(ref argument);
            if (smpp.LastError == 0)
            {
                sent.Add(reference);
            }
            else
            {
                Console.WriteLine(recipient + " not sent: " + smpp.LastError + " " +
                                  smpp.GetErrorDescription(smpp.LastError));
            }
        }
        // Send only queues. The server has answered the last message when its status is no longer this one.
        while (sent.Count > 0 &&
               StatusOf(sent.Last()).Status == (int)SmsDeliveryStatusValue.asDELIVERYSTATUS_SUBMITREQUESTED)
        {
            smpp.Sleep(10);
        }
        double seconds = clock.Elapsed.TotalSeconds;
        int timed = sent.Count > 1 ? sent.Count - 1 : sent.Count;  // the first goes at once
        Console.WriteLine("Sent {0} in {1:N1} s: {2:N1} messages/s", sent.Count, seconds, timed / seconds);
        return sent;
    }

    // The states of all: as long as there are open ones, but no more than a minute.
    static List<ISmsDeliveryStatus> StatesOf(List<string> sent)
    {
        for (int rounds = 1;; ++rounds)
        {
            var states = sent.Select(StatusOf).ToList();
            if (rounds == 120 || states.All(status => status.IsCompleted != 0)) return states;
            smpp.Sleep(500);
        }
    }

    [STAThread]
    static int Main(string[] args)
    {
        ushort port = 0, rate = 10;
        if (args.Length < 6 || !ushort.TryParse(args[1], out port) ||
            args.Length > 6 && !ushort.TryParse(args[6], out rate))
        {
            Console.WriteLine(@"Bulk.exe 127.0.0.1 2775 user password numbers.txt ""The text"" [messages per second]");
            return 2;
        }
        if (!File.Exists(args[4]))
        {
            Console.WriteLine(args[4] + " cannot be read");
            return 1;
        }
        string[] recipients = File.ReadLines(args[4]).Select(line => line.Trim()).Where(line => line != "").ToArray();
        smpp.Server = args[0];
        smpp.ServerPort = port;
        smpp.SystemID = args[2];
        smpp.SystemPassword = args[3];
        smpp.SystemCharSet = (int)SmppCharset.asSMPPCHARSET_GSM;
        smpp.SystemThroughput = rate;
        smpp.Connect();
        Check("Connect");
        List<string> sent = SendAll(recipients, args[5]);
        List<ISmsDeliveryStatus> states = StatesOf(sent);
        smpp.Disconnect();
        foreach (var state in states.GroupBy(status => status.StatusDescription))
        {
            Console.WriteLine(state.Key + ": " + state.Count());
        }
        if (sent.Count < recipients.Length) Console.WriteLine("Not sent: " + (recipients.Length - sent.Count));
        int delivered = states.Count(status => status.Status == (int)SmsDeliveryStatusValue.asDELIVERYSTATUS_DELIVERED);
        if (delivered < recipients.Length) return 1;
        Console.WriteLine("Done: all " + delivered + " delivered");
        return 0;
    }
}
