# Multimedia messages as a handset sends and fetches them (docs/mm1.md).
# A modem that is given by its name in Windows dials; without one, or with a port, the connection of the machine is used.
param([string]$Job, [string]$Provider, [string]$First, [string]$Second, [string]$Picture, [string]$Modem)

$last = @{ send = $Picture; receive = $Second }  # the last argument that each needs
if (-not $last[$Job]) {
    'Mm1.ps1 send provider.ini +31612345678 "The text" picture.jpg [modem] | receive provider.ini COM5 folder'
    exit 2
}

function Check($object) {
    if ($object.LastError -ne 0) { throw "$($object.LastError) $($object.GetErrorDescription($object.LastError))" }
}

$mm1 = New-Object -ComObject Quorvane.MmsProtocolMm1
$mm1.ProviderLoadConfig($Provider)
Check $mm1
$device = if ($Job -eq 'receive') { $First } else { $Modem }
if ($device) { $mm1.Device = $device }
if (-not $device -or $device -match '^COM\d+:?$') { $mm1.AdvancedSettings = 'UseExistingConnection=1' }

switch ($Job) {
    'send' {
        $slide = New-Object -ComObject Quorvane.MmsSlide
        $slide.AddText($Second)
        $slide.AddAttachment($Picture)
        Check $slide
        $message = New-Object -ComObject Quorvane.MmsMessage
        $message.Subject = 'A picture'
        $message.AddRecipient($First)
        Check $message
        $message.AddSlide([ref]$slide)
        $mm1.Connect()
        Check $mm1
        try {
            $mm1.Send([ref]$message)
            Check $mm1
            "Sent, message id $($mm1.MessageId)"
        } finally { $mm1.Disconnect() }
    }
    'receive' {
        # All notifications first: while a connection is dialled, the modem tells nothing.
        $locations = @()
        $notification = $mm1.GetFirstMessage()
        while ($mm1.LastError -eq 0) {
            if ($notification.Data -match '\bURL=(\S+)') { $locations += $Matches[1] }
            $notification = $mm1.GetNextMessage()
        }
        if ($mm1.LastError -ne 33060) { Check $mm1 }  # 33060: no more messages
        $mm1.Connect()
        Check $mm1
        try {
            $number = 0
            foreach ($location in $locations) {
                $message = $mm1.Retrieve($location)
                Check $mm1
                "From $($message.From): $($message.Subject)"
                $number++
                $message.SaveToFile((Join-Path $Second "message$number.mms"), 2)  # as it was received
                Check $message
            }
        } finally { $mm1.Disconnect() }
    }
}
