// Sends an alarm and sees to it that somebody has it: to the first number, and when its phone does not confirm within a
// minute, to the next.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Alarm.cs
using System;
using System.Text.RegularExpressions;
using System.Threading;
using NeltCtrl;

static class Program
{
    static readonly SmsProtocolGsm gsm = new SmsProtocolGsm();
    static readonly Regex beyondGsm = new Regex(
        @"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
        @"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");

    static bool Failed(string what)
    {
        if (gsm.LastError == 0) return false;
        Console.WriteLine(what + " failed: " + gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
        return true;
    }

    static bool HasReached(string recipient, string text)
    {
        object message = new SmsMessage
        {
            Recipient = recipient,
            Data = text,
            Format = (int)(beyondGsm.IsMatch(text) ? SmsMessageFormat.asMESSAGEFORMAT_UNICODE_MULTIPART
                                                  : SmsMessageFormat.asMESSAGEFORMAT_TEXT_MULTIPART),
            RequestDeliveryStatus = 1
        };
        string reference = gsm.Send(ref message);
        if (Failed("Sending to " + recipient)) return false;
        Console.WriteLine("Sent to " + recipient + ", reference " + reference);
        for (int tries = 1; tries <= 6; ++tries)
        {
            var status = gsm.QueryStatus(reference) as ISmsDeliveryStatus;
            if (Failed("The report of " + recipient)) return false;
            Console.WriteLine(recipient + ": " + status.StatusDescription);
            if (status.IsCompleted != 0)
            {
                return status.Status == (int)SmsDeliveryStatusValue.asDELIVERYSTATUS_DELIVERED;
            }
            Thread.Sleep(11000);  // reports are read from the modem every 10 s at the most
        }
        return false;
    }

    [STAThread]
    static int Main(string[] args)
    {
        if (args.Length < 3)
        {
            Console.WriteLine(@"Alarm.exe COM5 ""The text"" +31612345678 [+31687654321 ...]");
            return 2;
        }
        gsm.Device = args[0];
        for (int i = 2; i < args.Length; ++i)
        {
            if (HasReached(args[i], args[1]))
            {
                Console.WriteLine("Done: " + args[i] + " has the alarm");
                return 0;
            }
        }
        Console.WriteLine("Nobody has the alarm");
        return 1;
    }
}
