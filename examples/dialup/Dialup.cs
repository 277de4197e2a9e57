// Sends one message through a dialled provider.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Dialup.cs
using System;
using NeltCtrl;

static class Program
{
    [STAThread]
    static void Main(string[] args)
    {
        string kind = args.Length < 5 ? "" : args[1].ToLowerInvariant();
        if (kind != "ucp" && kind != "tap")
        {
            Console.WriteLine(@"Dialup.exe COM5 ucp|tap 0201234567 0612345678 ""The text"" [password]");
            Environment.Exit(2);
        }
        var constants = new SmsConstants();
        var dialup = new SmsProtocolDialup
        {
            Device = args[0],
            ProviderType = kind == "tap" ? constants.asPROVIDERTYPE_TAP_DEFAULT : constants.asPROVIDERTYPE_UCP,
            ProviderDialString = args[2],
        };
        if (args.Length > 5) dialup.ProviderPassword = args[5];
        object message = new SmsMessage { Recipient = args[3], Data = args[4] };
        dialup.Send(ref message);
        if (dialup.LastError != 0)
        {
            throw new Exception(dialup.LastError + " " + dialup.GetErrorDescription(dialup.LastError));
        }
        Console.WriteLine("Answer: " + dialup.ProviderResponse);
    }
}
