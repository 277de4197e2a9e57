// SMS through an SMPP server.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Smpp.cs
using System;
using System.Text.RegularExpressions;
using NeltCtrl;

static class Program
{
    static readonly SmsProtocolSmpp smpp = new SmsProtocolSmpp();
    static readonly Regex beyondGsm = new Regex(
        @"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
        @"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");

    static void Check()
    {
        if (smpp.LastError != 0) throw new Exception(smpp.LastError + " " + smpp.GetErrorDescription(smpp.LastError));
    }

    static void Send(string recipient, string text)
    {
        object message = new SmsMessage
        {
            Recipient = recipient,
            Data = text,
            Format = (int)(beyondGsm.IsMatch(text) ? SmsMessageFormat.asMESSAGEFORMAT_UNICODE_MULTIPART
                                                  : SmsMessageFormat.asMESSAGEFORMAT_TEXT_MULTIPART),
            RequestDeliveryStatus = 1
        };
        string reference = smpp.Send(ref message);
        Check();
        var status = (ISmsDeliveryStatus)smpp.QueryStatus(reference, 1);
        Check();
        Console.WriteLine("Status: " + status.StatusDescription);
    }

    static void Receive(int seconds)
    {
        for (int i = 0; i < 2 * seconds; ++i)
        {
            smpp.Sleep(500);
            for (var message = smpp.GetFirstMessage() as ISmsMessage; smpp.LastError == 0;
                 message = smpp.GetNextMessage() as ISmsMessage)
            {
                Console.WriteLine("From " + message.Sender + ": " + message.Data);
            }
        }
    }

    [STAThread]
    static void Main(string[] args)
    {
        ushort port = 0, seconds = 2;
        bool send = args.Length > 6 && args[0] == "send";
        bool receive = args.Length > 4 && args[0] == "receive" &&
                       (args.Length == 5 || ushort.TryParse(args[5], out seconds));
        if (!send && !receive || !ushort.TryParse(args[2], out port))
        {
            Console.WriteLine(@"Smpp.exe send 127.0.0.1 2775 user password +31612345678 ""The text"" | " +
                              @"receive 127.0.0.1 2775 user password [seconds]");
            Environment.Exit(2);
        }
        smpp.Server = args[1];
        smpp.ServerPort = port;
        smpp.SystemID = args[3];
        smpp.SystemPassword = args[4];
        smpp.SystemCharSet = (int)SmppCharset.asSMPPCHARSET_GSM;
        smpp.Connect();
        Check();
        if (send) Send(args[5], args[6]);
        else Receive(seconds);
        smpp.Disconnect();
    }
}
