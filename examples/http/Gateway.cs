// Sends one SMS through an HTTP gateway, whose requests two templates describe.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Gateway.cs
using System;
using System.Text.RegularExpressions;
using NeltCtrl;

static class Program
{
    static readonly Regex beyondGsm = new Regex(
        @"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
        @"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");

    [STAThread]
    static void Main(string[] args)
    {
        ushort port = 0;
        if (args.Length < 4 || !ushort.TryParse(args[1], out port))
        {
            Console.WriteLine(@"Gateway.exe 127.0.0.1 8080 +31612345678 ""The text"" [account password]");
            Environment.Exit(2);
        }
        var gateway = new SmsProtocolHttp
        {
            ProviderHost = args[0],
            ProviderPort = port,
            // The templates: a request as the provider describes it, from behind "host/", with a placeholder where
            // the number and where the text stand. What follows "?" is posted. These are for a gateway that answers
            // OK or ERROR; docs/http.md has all placeholders.
            URLText = "send?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%",
            URLUnicode = "send?to=%MESSAGERECIPIENT%&ucs2=%MESSAGEDATA%",
            ProviderSuccessResponse = "OK",
            ProviderErrorResponse = "ERROR"
        };
        if (args.Length > 5)
        {
            gateway.ProviderWebAccount = args[4];
            gateway.ProviderWebPassword = args[5];
        }
        object message = new SmsMessage
        {
            Recipient = args[2],
            Data = args[3],
            Format = (int)(beyondGsm.IsMatch(args[3]) ? SmsMessageFormat.asMESSAGEFORMAT_UNICODE
                                                     : SmsMessageFormat.asMESSAGEFORMAT_TEXT)
        };
        gateway.Send(ref message);
        if (gateway.LastError != 0)
        {
            throw new Exception(gateway.LastError + " " + gateway.GetErrorDescription(gateway.LastError));
        }
        Console.WriteLine("Answer: " + gateway.ProviderResponse);
    }
}
