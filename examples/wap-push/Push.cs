// Sends a text with a link that the phone offers to open.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Push.cs
using System;
using System.Text.RegularExpressions;
using NeltCtrl;

static class Program
{
    static bool Failed(string what, int error, Func<int, string> describe)
    {
        if (error != 0) Console.WriteLine(what + " failed: " + error + " " + describe(error));
        return error != 0;
    }

    [STAThread]
    static int Main(string[] args)
    {
        if (args.Length < 4)
        {
            Console.WriteLine(@"Push.exe COM5 +31612345678 http://www.example.org/ ""The text""");
            return 2;
        }
        if (Regex.IsMatch(args[3], "[^ -~]"))
        {
            Console.WriteLine("The text is not ASCII: docs/content.md says how other letters go");
            return 2;
        }
        var content = new SmsDataWapPush
        {
            ConnectionType = (int)WapPushService.asWAPPUSH_SERVICE_INDICATION,
            URL = args[2],
            Description = args[3],
            SignalAction = (int)WapPushSignal.asWAPPUSHSIGNAL_HIGH
        };
        content.Encode();
        if (Failed("Encode", content.LastError, content.GetErrorDescription)) return 1;
        Console.WriteLine("Content: " + content.EncodedMessage);

        object message = new SmsMessage
        {
            Recipient = args[1],
            Data = content.EncodedMessage,
            Format = (int)SmsMessageFormat.asMESSAGEFORMAT_DATA_UDH
        };
        var gsm = new SmsProtocolGsm { Device = args[0] };
        string reference = gsm.Send(ref message);
        if (Failed("Send", gsm.LastError, gsm.GetErrorDescription)) return 1;
        Console.WriteLine("Sent, reference " + reference);
        return 0;
    }
}
