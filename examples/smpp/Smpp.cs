// Smpp.exe send 127.0.0.1 2775 user password +31612345678 "The text" | receive 127.0.0.1 2775 user password [seconds]
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll, then csc /r:NeltCtrl.Interop.dll /platform:x64 Smpp.cs
using System;
using NeltCtrl;

static class Program
{
    static readonly SmsProtocolSmpp smpp = new SmsProtocolSmpp();

    static void Check()
    {
        if (smpp.LastError != 0) throw new Exception(smpp.LastError + " " + smpp.GetErrorDescription(smpp.LastError));
    }

    static void Send(string recipient, string text)
    {
        object message = new SmsMessage { Recipient = recipient, Data = text, RequestDeliveryStatus = 1 };
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

    static void Main(string[] args)
    {
        smpp.Server = args[1];
        smpp.ServerPort = int.Parse(args[2]);
        smpp.SystemID = args[3];
        smpp.SystemPassword = args[4];
        smpp.Connect();
        Check();
        if (args[0] == "send") Send(args[5], args[6]);
        else Receive(args.Length > 5 ? int.Parse(args[5]) : 2);
        smpp.Disconnect();
    }
}
