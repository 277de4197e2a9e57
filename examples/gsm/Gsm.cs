// SMS through a GSM modem.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Gsm.cs
using System;
using System.Collections.Generic;
using System.Text.RegularExpressions;
using System.Threading;
using NeltCtrl;

static class Program
{
    static readonly SmsProtocolGsm gsm = new SmsProtocolGsm();
    static readonly Regex beyondGsm = new Regex(
        @"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
        @"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");

    static void Check()
    {
        if (gsm.LastError != 0) throw new Exception(gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
    }

    static string Send(string recipient, string text, bool withReport)
    {
        object message = new SmsMessage
        {
            Recipient = recipient,
            Data = text,
            Format = (int)(beyondGsm.IsMatch(text) ? SmsMessageFormat.asMESSAGEFORMAT_UNICODE_MULTIPART
                                                  : SmsMessageFormat.asMESSAGEFORMAT_TEXT_MULTIPART),
            RequestDeliveryStatus = withReport ? 1 : 0
        };
        string reference = gsm.Send(ref message);
        Check();
        Console.WriteLine("Sent, reference " + reference);
        return reference;
    }

    static void Receive()
    {
        gsm.Receive();
        Check();
        for (var message = gsm.GetFirstMessage() as ISmsMessage; gsm.LastError == 0;
             message = gsm.GetNextMessage() as ISmsMessage)
        {
            Console.WriteLine("From " + message.Sender + ": " + message.Data);
        }
    }

    static void Report(string recipient, string text)
    {
        string reference = Send(recipient, text, true);
        ISmsDeliveryStatus status;
        do
        {
            Thread.Sleep(11000);
            status = (ISmsDeliveryStatus)gsm.QueryStatus(reference);
            Check();
            Console.WriteLine("Status: " + status.StatusDescription);
        } while (status.IsCompleted == 0);
    }

    [STAThread]
    static void Main(string[] args)
    {
        var counts = new Dictionary<string, int> { { "send", 4 }, { "receive", 2 }, { "report", 4 }, { "pin", 3 } };
        int count;
        if (args.Length == 0 || !counts.TryGetValue(args[0], out count) || args.Length < count)
        {
            Console.WriteLine(@"Gsm.exe send COM5 +31612345678 ""The text"" | receive COM5 | " +
                              @"report COM5 +31612345678 ""The text"" | pin COM5 1234");
            Environment.Exit(2);
        }
        gsm.Device = args[1];
        switch (args[0])
        {
            case "send": Send(args[2], args[3], false); break;
            case "receive": Receive(); break;
            case "report": Report(args[2], args[3]); break;
            case "pin": gsm.EnterPin(args[2]); Check(); Console.WriteLine("PIN accepted"); break;
        }
    }
}
