// Sends one page through a paging server.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Pager.cs
using System;
using NeltCtrl;

static class Program
{
    [STAThread]
    static void Main(string[] args)
    {
        ushort port = 0;
        if (args.Length < 4 || !ushort.TryParse(args[1], out port))
        {
            Console.WriteLine(@"Pager.exe 127.0.0.1 4444 5551212 ""The text"" [password]");
            Environment.Exit(2);
        }
        var pager = new PagerProtocolSnpp { Server = args[0], ServerPort = port };
        if (args.Length > 4) pager.ProviderPassword = args[4];
        object message = new PagerMessage { Recipient = args[2], Data = args[3] };
        pager.Send(ref message);
        if (pager.LastError != 0)
        {
            throw new Exception(pager.LastError + " " + pager.GetErrorDescription(pager.LastError));
        }
        Console.WriteLine("Answer: " + pager.ProviderResponse);
    }
}
