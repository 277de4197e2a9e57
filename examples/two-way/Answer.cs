// Answers every text that comes from a number, until Ctrl-C or until so many are answered. What was answered is deleted;
// what could not be answered is tried again. All else (data, MMS notifications, texts from names) stays on the device.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Answer.cs
using System;
using System.Text.RegularExpressions;
using System.Threading;
using NeltCtrl;

static class Program
{
    static readonly SmsProtocolGsm gsm = new SmsProtocolGsm();
    static readonly SmsMessage answer = new SmsMessage();
    static readonly Regex beyondGsm = new Regex(
        @"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2" +
        @"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]");

    static bool Failed(string what)
    {
        if (gsm.LastError == 0) return false;
        Console.WriteLine(what + " failed: " + gsm.LastError + " " + gsm.GetErrorDescription(gsm.LastError));
        return true;
    }

    static bool IsAnswered(ISmsMessage message)
    {
        if (message.Format != (int)SmsMessageFormat.asMESSAGEFORMAT_TEXT &&
            message.Format != (int)SmsMessageFormat.asMESSAGEFORMAT_UNICODE)
        {
            return false;
        }
        if (!Regex.IsMatch(message.Sender, "^\\+?[0-9]+$")) return false;
        Console.WriteLine("From " + message.Sender + ": " + message.Data);
        answer.Recipient = message.Sender;
        object argument = answer;
        gsm.Send(ref argument);
        return !Failed("The answer to " + message.Sender);
    }

    // Answers up to so many of the messages that were received; gives how many it were.
    static int AnswerWaiting(int most)
    {
        int answered = 0;
        int index = 0;  // of the first message that has no answer yet
        while (answered < most)
        {
            var message = gsm.GetMessage(index) as ISmsMessage;
            if (gsm.LastError != 0) break;
            if (IsAnswered(message))
            {
                gsm.DeleteMessage(index);
                if (Failed("DeleteMessage")) Environment.Exit(1);  // or it would be answered again and again
                ++answered;
            }
            else
            {
                ++index;
            }
        }
        return answered;
    }

    [STAThread]
    static int Main(string[] args)
    {
        int wanted = 0, pause = 5000;
        if (args.Length < 2 || args.Length > 2 && !int.TryParse(args[2], out wanted) ||
            args.Length > 3 && !int.TryParse(args[3], out pause) || wanted < 0 || pause < 0)
        {
            Console.WriteLine(@"Answer.exe COM5 ""The answer"" [number of messages] [pause in ms]");
            return 2;
        }
        gsm.Device = args[0];
        answer.Data = args[1];
        answer.Format = (int)(beyondGsm.IsMatch(args[1]) ? SmsMessageFormat.asMESSAGEFORMAT_UNICODE_MULTIPART
                                                        : SmsMessageFormat.asMESSAGEFORMAT_TEXT_MULTIPART);
        int answered = 0;
        while (true)
        {
            gsm.Receive();
            if (Failed("Receive")) return 1;
            answered += AnswerWaiting(wanted == 0 ? int.MaxValue : wanted - answered);
            if (wanted > 0 && answered >= wanted) break;
            Thread.Sleep(pause);
        }
        Console.WriteLine("Done: " + answered + " answered");
        return 0;
    }
}
