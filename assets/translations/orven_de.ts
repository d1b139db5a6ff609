<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>FileTelephoneLines</name>
    <message>
        <source>Could not be opened: %1</source>
        <translation>Konnte nicht geöffnet werden: %1</translation>
    </message>
    <message>
        <source>Another line is chosen</source>
        <translation>Eine andere Leitung ist gewählt</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>The line is open: %1.</source>
        <translation>Die Leitung ist offen: %1.</translation>
    </message>
    <message>
        <source>The line is open: calls can come in at %1.</source>
        <translation>Die Leitung ist offen: Anrufe können bei %1 ankommen.</translation>
    </message>
    <message>
        <source>Not in use yet</source>
        <translation>Noch nicht in Gebrauch</translation>
    </message>
    <message>
        <source>Waiting for calls</source>
        <translation>Wartet auf Anrufe</translation>
    </message>
</context>
<context>
    <name>ModemAgent</name>
    <message>
        <source>No voice modem is found: plug one in, or choose another line in Options, Devices</source>
        <translation>Kein Sprachmodem gefunden: eines anschließen oder unter Einstellungen, Geräte eine andere Leitung wählen</translation>
    </message>
    <message>
        <source>The modem was unplugged: plug it in again, and ORVEN uses it</source>
        <translation>Das Modem wurde abgezogen: wieder anschließen, dann verwendet ORVEN es</translation>
    </message>
</context>
<context>
    <name>OwnCallSession</name>
    <message>
        <source>%1 cannot be read: install the program again.</source>
        <translation>%1 lässt sich nicht lesen: das Programm neu installieren.</translation>
    </message>
    <message>
        <source>The line&apos;s address %1 is not one of this computer at the moment.</source>
        <translation>Die Adresse der Leitung, %1, gehört zurzeit nicht zu diesem Computer.</translation>
    </message>
    <message>
        <source>The line cannot be called at %1: %2.</source>
        <translation>Die Leitung lässt sich bei %1 nicht anrufen: %2.</translation>
    </message>
    <message>
        <source>The line does not answer at %1: %2.</source>
        <translation>Die Leitung nimmt bei %1 nicht an: %2.</translation>
    </message>
    <message>
        <source>The line refuses the call: %1 %2.</source>
        <translation>Die Leitung lehnt den Anruf ab: %1 %2.</translation>
    </message>
    <message>
        <source>The greeting cannot be read: choose another one.</source>
        <translation>Die Ansage lässt sich nicht lesen: eine andere wählen.</translation>
    </message>
    <message>
        <source>The caller hears nothing.</source>
        <translation>Der Anrufer hört nichts.</translation>
    </message>
    <message>
        <source>The caller hears another sound than the greeting.</source>
        <translation>Der Anrufer hört etwas anderes als die Ansage.</translation>
    </message>
    <message>
        <source>The caller hears no beep: is there a file beep.wav?</source>
        <translation>Der Anrufer hört keinen Signalton: ist die Datei beep.wav vorhanden?</translation>
    </message>
    <message>
        <source>The line does not ring at %1.</source>
        <translation>Die Leitung klingelt bei %1 nicht.</translation>
    </message>
    <message>
        <source>The caller hears nothing more from the line.</source>
        <translation>Der Anrufer hört nichts mehr von der Leitung.</translation>
    </message>
    <message>
        <source>The machine hung up before the caller had finished.</source>
        <translation>Der Anrufbeantworter hat aufgelegt, bevor der Anrufer fertig war.</translation>
    </message>
    <message>
        <source>The line is busy: somebody else has called.</source>
        <translation>Die Leitung ist besetzt: jemand anders hat angerufen.</translation>
    </message>
</context>
<context>
    <name>PasswordField</name>
    <message>
        <source>Without a password anyone who keys * hears the messages.</source>
        <translation>Ohne Passwort hört jeder, der * wählt, die Nachrichten.</translation>
    </message>
    <message>
        <source>A telephone can key the digits 0 to 9 and # only.</source>
        <translation>Ein Telefon kann nur die Ziffern 0 bis 9 und # wählen.</translation>
    </message>
    <message>
        <source>Enter it while the greeting plays, then press *</source>
        <translation>Während der Ansage wählen, danach *</translation>
    </message>
    <message>
        <source>Show the password</source>
        <translation>Das Passwort anzeigen</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>ServerTrouble</name>
    <message>
        <source>The server %1 is not found: correct its name in Options, Devices, or check the network</source>
        <translation>Server %1 nicht gefunden: seinen Namen unter Einstellungen, Geräte berichtigen oder das Netz prüfen</translation>
    </message>
    <message>
        <source>Nothing listens at the server %1 for %2: start it, or correct its port in Options, Devices</source>
        <translation>Am Server %1 nimmt nichts %2 an: ihn starten oder seinen Port unter Einstellungen, Geräte berichtigen</translation>
    </message>
    <message>
        <source>The server %1 cannot be reached (%2): check the network</source>
        <translation>Server %1 nicht erreichbar (%2): das Netz prüfen</translation>
    </message>
    <message>
        <source>The server %1 does not answer: switch it on, or correct its name in Options, Devices</source>
        <translation>Server %1 antwortet nicht: ihn einschalten oder seinen Namen unter Einstellungen, Geräte berichtigen</translation>
    </message>
    <message>
        <source>The connection to the server %1 breaks again and again: check the network</source>
        <translation>Die Verbindung zum Server %1 bricht immer wieder ab: das Netz prüfen</translation>
    </message>
    <message>
        <source>No network leads to the server %1: check this computer&apos;s network</source>
        <translation>Kein Netz führt zum Server %1: das Netz dieses Computers prüfen</translation>
    </message>
    <message>
        <source>No network leads from %1 to the server %2: use * as address for calls in Options, Devices</source>
        <translation>Kein Netz führt von %1 zum Server %2: unter Einstellungen, Geräte * als Adresse für Anrufe eintragen</translation>
    </message>
    <message>
        <source>The certificate of the server %1 is not accepted (%2): correct its name or the trusted certificates in Options, Devices</source>
        <translation>Das Zertifikat des Servers %1 wird nicht anerkannt (%2): seinen Namen oder die vertrauten Zertifikate unter Einstellungen, Geräte berichtigen</translation>
    </message>
    <message>
        <source>The server %1 opens no encrypted connection (%2): check its port, which is often 5061</source>
        <translation>Server %1 öffnet keine verschlüsselte Verbindung (%2): seinen Port prüfen, oft ist es 5061</translation>
    </message>
</context>
<context>
    <name>SipAgent</name>
    <message>
        <source>%1 (%2 of %3 accounts work)</source>
        <translation>%1 (%2 von %3 Konten arbeiten)</translation>
    </message>
</context>
<context>
    <name>SipOwnCaller</name>
    <message>
        <source>The test call failed: %1.</source>
        <translation>Der Testanruf ist fehlgeschlagen: %1.</translation>
    </message>
    <message>
        <source>No line is chosen: choose one in Options.</source>
        <translation>Es ist keine Leitung gewählt: in den Einstellungen eine wählen.</translation>
    </message>
    <message>
        <source>The program can only call a line over SIP: call this one from another telephone.</source>
        <translation>Das Programm kann nur eine SIP-Leitung anrufen: diese von einem anderen Telefon anrufen.</translation>
    </message>
</context>
<context>
    <name>SipTransports</name>
    <message>
        <source>Encrypted calls are not possible, %1: correct the certificates in lines.ini</source>
        <translation>Verschlüsselte Anrufe sind nicht möglich, %1: die Zertifikate in lines.ini berichtigen</translation>
    </message>
    <message>
        <source>The address for calls &quot;%1&quot; is not an address and port: correct it in Options, Devices</source>
        <translation>„%1“ ist keine Adresse für Anrufe mit Port: unter Einstellungen, Geräte berichtigen</translation>
    </message>
</context>
<context>
    <name>Transfer</name>
    <message>
        <source>&quot;%1&quot; is not a mail server: name, name:port, smtp://name or smtps://name is expected</source>
        <translation>„%1“ ist kein Mailserver: erwartet wird Name, Name:Port, smtp://Name oder smtps://Name</translation>
    </message>
    <message>
        <source>there is no mail server</source>
        <translation>der Mailserver fehlt</translation>
    </message>
</context>
<context>
    <name>orven</name>
    <message>
        <source>&apos;E-Mail To&apos; Is Invalid</source>
        <translation>„E-Mail an“ ist ungültig</translation>
    </message>
    <message>
        <source>&apos;SMTP&apos; Is Invalid</source>
        <translation>„SMTP“ ist ungültig</translation>
    </message>
    <message>
        <source>&apos;From(Replay To)&apos; Is Invalid</source>
        <translation>„Absender (Antwort an)“ ist ungültig</translation>
    </message>
    <message>
        <source>&apos;Application Path&apos; Field Is Empty</source>
        <translation>Das Feld „Programmpfad“ ist leer</translation>
    </message>
    <message>
        <source>&apos;Application Path&apos; Is Too Long, %1 Bytes At Most</source>
        <translation>„Programmpfad“ ist zu lang, höchstens %1 Bytes</translation>
    </message>
    <message>
        <source>Invalid procedure call or argument</source>
        <translation>Ungültiger Prozeduraufruf oder ungültiges Argument</translation>
    </message>
    <message>
        <source>Overflow</source>
        <translation>Überlauf</translation>
    </message>
    <message>
        <source>Out of memory</source>
        <translation>Nicht genügend Arbeitsspeicher</translation>
    </message>
    <message>
        <source>Subscript out of range</source>
        <translation>Index außerhalb des gültigen Bereichs</translation>
    </message>
    <message>
        <source>Division by zero</source>
        <translation>Division durch null</translation>
    </message>
    <message>
        <source>Type mismatch</source>
        <translation>Typen unverträglich</translation>
    </message>
    <message>
        <source>Internal error</source>
        <translation>Interner Fehler</translation>
    </message>
    <message>
        <source>File not found</source>
        <translation>Datei nicht gefunden</translation>
    </message>
    <message>
        <source>Device I/O error</source>
        <translation>Ein-/Ausgabefehler des Geräts</translation>
    </message>
    <message>
        <source>File already exists</source>
        <translation>Datei existiert bereits</translation>
    </message>
    <message>
        <source>Disk full</source>
        <translation>Datenträger voll</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>Zugriff verweigert</translation>
    </message>
    <message>
        <source>Path/File access error</source>
        <translation>Fehler beim Zugriff auf Pfad oder Datei</translation>
    </message>
    <message>
        <source>Path not found</source>
        <translation>Pfad nicht gefunden</translation>
    </message>
    <message>
        <source>Act with all calls</source>
        <translation>Bei allen Anrufen</translation>
    </message>
    <message>
        <source>Act with messages only!</source>
        <translation>Nur bei Nachrichten</translation>
    </message>
    <message>
        <source>1 Last Month</source>
        <translation>Letzter Monat</translation>
    </message>
    <message>
        <source>2 Last Month</source>
        <translation>Letzte 2 Monate</translation>
    </message>
    <message>
        <source>3 Last Month</source>
        <translation>Letzte 3 Monate</translation>
    </message>
    <message>
        <source>For Ever</source>
        <translation>Unbegrenzt</translation>
    </message>
    <message>
        <source>&amp;Modem device:</source>
        <translation>Tele&amp;fonleitung:</translation>
    </message>
    <message>
        <source>The telephone line to answer; a change takes effect when the line is next opened</source>
        <translation>Die Leitung, die angenommen wird; eine Änderung gilt, sobald die Leitung das nächste Mal geöffnet wird</translation>
    </message>
    <message>
        <source>Modem device</source>
        <translation>Telefonleitung</translation>
    </message>
    <message>
        <source>Seconds of silence that end a message</source>
        <translation>Sekunden Stille, die eine Nachricht beenden</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>Sekunden</translation>
    </message>
    <message>
        <source>Hang up when the caller is silent for</source>
        <translation>Auflegen, wenn der Anrufer schweigt, nach</translation>
    </message>
    <message>
        <source>Otherwise a message ends when the caller hangs up, or when it is too long</source>
        <translation>Sonst endet eine Nachricht, wenn der Anrufer auflegt oder sie zu lang wird</translation>
    </message>
    <message>
        <source>Sil&amp;ence is up to:</source>
        <translation>&amp;Stille bis Pegel:</translation>
    </message>
    <message>
        <source>Choose a level above the noise of the line and below speech</source>
        <translation>Einen Pegel über dem Rauschen der Leitung und unter dem Sprechen wählen</translation>
    </message>
    <message>
        <source>Level up to which a caller is silent, in percent of full level</source>
        <translation>Pegel, bis zu dem ein Anrufer schweigt, in Prozent des vollen Pegels</translation>
    </message>
    <message>
        <source>Record a message after the greeting</source>
        <translation>Nach der Ansage eine Nachricht aufnehmen</translation>
    </message>
    <message>
        <source>Otherwise the call ends after the greeting</source>
        <translation>Sonst endet der Anruf nach der Ansage</translation>
    </message>
    <message>
        <source>&amp;Answer after:</source>
        <translation>&amp;Rufannahme nach:</translation>
    </message>
    <message>
        <source>Rings before a call is answered</source>
        <translation>Klingelzeichen, bevor ein Anruf angenommen wird</translation>
    </message>
    <message>
        <source>rings</source>
        <translation>Klingelzeichen</translation>
    </message>
    <message>
        <source>Longest &amp;message:</source>
        <translation>Längste &amp;Nachricht:</translation>
    </message>
    <message>
        <source>Minutes of the longest message</source>
        <translation>Minuten der längsten Nachricht</translation>
    </message>
    <message>
        <source>minutes</source>
        <translation>Minuten</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>&amp;Passwort:</translation>
    </message>
    <message>
        <source>Digits that a telephone can key</source>
        <translation>Ziffern, die ein Telefon wählen kann</translation>
    </message>
    <message>
        <source>Ask before deleting a call</source>
        <translation>Vor dem Löschen eines Anrufs fragen</translation>
    </message>
    <message>
        <source>A deleted call&apos;s message is deleted with it</source>
        <translation>Mit einem Anruf wird auch seine Nachricht gelöscht</translation>
    </message>
    <message>
        <source>Ask before clearing the calls list</source>
        <translation>Vor dem Leeren der Anrufliste fragen</translation>
    </message>
    <message>
        <source>Clearing leaves the message files where they are</source>
        <translation>Beim Leeren bleiben die Dateien der Nachrichten erhalten</translation>
    </message>
    <message>
        <source>List only calls that left a message</source>
        <translation>Nur Anrufe mit Nachricht auflisten</translation>
    </message>
    <message>
        <source>Calls without a message are not added to the calls list</source>
        <translation>Anrufe ohne Nachricht kommen nicht in die Anrufliste</translation>
    </message>
    <message>
        <source>&amp;Sound card:</source>
        <translation>&amp;Soundkarte:</translation>
    </message>
    <message>
        <source>Where messages and greetings are heard and greetings are recorded</source>
        <translation>Hier werden Nachrichten und Ansagen gehört und Ansagen aufgenommen</translation>
    </message>
    <message>
        <source>Sound card</source>
        <translation>Soundkarte</translation>
    </message>
    <message>
        <source>Hear my messages from another telephone</source>
        <translation>Nachrichten von einem anderen Telefon abhören</translation>
    </message>
    <message>
        <source>Call this machine, key the password while the greeting plays, then the star key. The password works whether this is checked or not</source>
        <translation>Hier anrufen, während der Ansage das Passwort wählen, danach die Sterntaste. Das Passwort gilt auch dann, wenn dies nicht gewählt ist</translation>
    </message>
    <message>
        <source>Store messages compressed</source>
        <translation>Nachrichten komprimiert speichern</translation>
    </message>
    <message>
        <source>Half the size, in the quality of the telephone</source>
        <translation>Halb so groß, in der Qualität des Telefons</translation>
    </message>
    <message>
        <source>Show the quick options toolbar</source>
        <translation>Schnelleinstellungen anzeigen</translation>
    </message>
    <message>
        <source>Greeting, rings and recording in the main window</source>
        <translation>Ansage, Klingelzeichen und Aufnahme im Hauptfenster</translation>
    </message>
    <message>
        <source>Listen in while a message is recorded</source>
        <translation>Mithören, während eine Nachricht aufgenommen wird</translation>
    </message>
    <message>
        <source>The caller is heard on the sound card</source>
        <translation>Der Anrufer ist über die Soundkarte zu hören</translation>
    </message>
    <message>
        <source>Send Calls To E- Mail</source>
        <translation>Anrufe per E-Mail senden</translation>
    </message>
    <message>
        <source>E-Mail To:</source>
        <translation>E-Mail an:</translation>
    </message>
    <message>
        <source>SMTP :</source>
        <translation>SMTP:</translation>
    </message>
    <message>
        <source>The mail server: its name, name:port, smtp://… or smtps://…</source>
        <translation>Der Mailserver: Name, Name:Port, smtp://… oder smtps://…</translation>
    </message>
    <message>
        <source>From(Replay To):</source>
        <translation>Absender (Antwort an):</translation>
    </message>
    <message>
        <source>Calls that this applies to</source>
        <translation>Anrufe, für die das gilt</translation>
    </message>
    <message>
        <source>Send Calls To Application</source>
        <translation>Anrufe an ein Programm übergeben</translation>
    </message>
    <message>
        <source>Application Path:</source>
        <translation>Programmpfad:</translation>
    </message>
    <message>
        <source>The program and its arguments; put arguments with blanks in double quotes</source>
        <translation>Das Programm und seine Argumente; Argumente mit Leerzeichen in Anführungszeichen setzen</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Im Hintergrund</translation>
    </message>
    <message>
        <source>User:</source>
        <translation>Benutzer:</translation>
    </message>
    <message>
        <source>Leave empty if the mail server needs no login</source>
        <translation>Leer lassen, wenn der Mailserver keine Anmeldung verlangt</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <source>Log in over an encrypted connection only</source>
        <translation>Nur über eine verschlüsselte Verbindung anmelden</translation>
    </message>
    <message>
        <source>Play Sound:</source>
        <translation>Klang abspielen:</translation>
    </message>
    <message>
        <source>Only If Got Message</source>
        <translation>Nur bei einer Nachricht</translation>
    </message>
    <message>
        <source>Display Caller View</source>
        <translation>Anruferfenster zeigen</translation>
    </message>
    <message>
        <source>Animate Caller View</source>
        <translation>Anruferfenster animieren</translation>
    </message>
    <message>
        <source>Speed:</source>
        <translation>Tempo:</translation>
    </message>
    <message>
        <source>Speed of the caller view</source>
        <translation>Tempo des Anruferfensters</translation>
    </message>
    <message>
        <source>Close Caller View after</source>
        <translation>Anruferfenster schließen nach</translation>
    </message>
    <message>
        <source>Seconds after which the caller view closes</source>
        <translation>Sekunden, nach denen sich das Anruferfenster schließt</translation>
    </message>
    <message>
        <source>Sec&apos;</source>
        <translation>Sek.</translation>
    </message>
    <message>
        <source>Log Calls</source>
        <translation>Anrufe protokollieren</translation>
    </message>
    <message>
        <source>Write a line for each call</source>
        <translation>Eine Zeile für jeden Anruf schreiben</translation>
    </message>
    <message>
        <source>Log System</source>
        <translation>System protokollieren</translation>
    </message>
    <message>
        <source>Write each step of the line and each failure</source>
        <translation>Jeden Schritt der Leitung und jeden Fehler schreiben</translation>
    </message>
    <message>
        <source>Log For:</source>
        <translation>Aufbewahren:</translation>
    </message>
    <message>
        <source>Older files in the log folder are deleted</source>
        <translation>Ältere Dateien im Protokollordner werden gelöscht</translation>
    </message>
    <message>
        <source>Worn before delete</source>
        <translation>Vor dem Löschen warnen</translation>
    </message>
    <message>
        <source>Ask before the log viewer deletes a log</source>
        <translation>Fragen, bevor ein Protokoll gelöscht wird</translation>
    </message>
    <message>
        <source>Please Install SAPI 5.1 From Microsoft</source>
        <translation>Bitte SAPI 5.1 von Microsoft installieren</translation>
    </message>
    <message>
        <source>This Will Delete &apos;Text To Speech&apos; Recorded. <byte value="xd"/>
 Continue ?</source>
        <translation>Die aus dem Text erzeugte Ansage wird gelöscht. <byte value="xd"/>
 Fortfahren?</translation>
    </message>
    <message>
        <source>This Will Delete Speaker Recorded. <byte value="xd"/>
 Continue ?</source>
        <translation>Die Aufnahme vom Mikrofon wird gelöscht. <byte value="xd"/>
 Fortfahren?</translation>
    </message>
    <message>
        <source>Greeting name with ? \ / | * &lt; &gt; : &quot; is not legal</source>
        <translation>Der Name einer Ansage darf ? \ / | * &lt; &gt; : &quot; nicht enthalten</translation>
    </message>
    <message>
        <source>The move of the messages to %1 was interrupted and cannot continue.

%2

Messages that were moved are in %1
The others are in %3

The move continues when the program starts and both folders exist, or when you choose %1 in the options again.</source>
        <translation>Das Verschieben der Nachrichten nach %1 wurde unterbrochen und kann nicht fortgesetzt werden.

%2

Verschobene Nachrichten sind in %1
Die übrigen sind in %3

Das Verschieben geht weiter, wenn das Programm startet und beide Ordner vorhanden sind, oder wenn %1 in den Einstellungen noch einmal gewählt wird.</translation>
    </message>
    <message>
        <source>These messages could not be moved. They are still in %1
%2</source>
        <translation>Diese Nachrichten konnten nicht verschoben werden. Sie sind noch in %1
%2</translation>
    </message>
    <message>
        <source>%1
and %2 more, which the system log names</source>
        <translation>%1
und %2 weitere, die im Systemprotokoll stehen</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>%1, %2 to %3</source>
        <translation>%1, %2 bis %3</translation>
    </message>
    <message>
        <source>%1 is missing: expected %2.</source>
        <translation>%1 fehlt: erwartet wird %2.</translation>
    </message>
    <message>
        <source>%1 is wrong: expected %2.</source>
        <translation>%1 ist falsch: erwartet wird %2.</translation>
    </message>
    <message>
        <source>%1 cannot be stored: expected no blank at its ends, no &quot;;&quot; at its beginning or after a blank, and no control characters.</source>
        <translation>%1 lässt sich nicht speichern: keine Leerzeichen am Anfang oder Ende, kein „;“ am Anfang oder nach einem Leerzeichen, keine Steuerzeichen.</translation>
    </message>
    <message>
        <source>The name</source>
        <translation>Der Name</translation>
    </message>
    <message>
        <source>The modem does not answer: switch it off and on, or unplug it and plug it in again</source>
        <translation>Das Modem antwortet nicht: aus- und einschalten oder abziehen und wieder anschließen</translation>
    </message>
    <message>
        <source>There is no modem at the line&apos;s port: choose the modem&apos;s port in Options, Devices</source>
        <translation>Am Port der Leitung ist kein Modem: unter Einstellungen, Geräte den Port des Modems wählen</translation>
    </message>
    <message>
        <source>The modem is not a voice modem: ORVEN needs one that can play and record</source>
        <translation>Das Modem ist kein Sprachmodem: ORVEN braucht eines, das wiedergeben und aufnehmen kann</translation>
    </message>
    <message>
        <source>The modem&apos;s audio format is not supported: use another modem</source>
        <translation>Das Tonformat des Modems wird nicht unterstützt: ein anderes Modem verwenden</translation>
    </message>
    <message>
        <source>The modem is not plugged in: plug it in, and ORVEN uses it</source>
        <translation>Das Modem ist nicht angeschlossen: anschließen, dann verwendet ORVEN es</translation>
    </message>
    <message>
        <source>Another program uses the modem: end that program, and ORVEN uses the modem</source>
        <translation>Ein anderes Programm verwendet das Modem: dieses beenden, dann verwendet ORVEN das Modem</translation>
    </message>
    <message>
        <source>You may not use the modem&apos;s port: join the group &quot;dialout&quot; and log in again</source>
        <translation>Keine Rechte für den Port des Modems: der Gruppe „dialout“ beitreten und neu anmelden</translation>
    </message>
    <message>
        <source>The modem&apos;s port cannot be used: unplug the modem and plug it in again</source>
        <translation>Der Port des Modems ist nicht benutzbar: das Modem abziehen und wieder anschließen</translation>
    </message>
    <message>
        <source>No modem is plugged in: plug one in, and ORVEN uses it</source>
        <translation>Kein Modem angeschlossen: eines anschließen, dann verwendet ORVEN es</translation>
    </message>
    <message>
        <source>The test call failed: %1.</source>
        <translation>Der Testanruf ist fehlgeschlagen: %1.</translation>
    </message>
    <message>
        <source>Registration failed: %1: %2</source>
        <translation>Anmeldung fehlgeschlagen: %1: %2</translation>
    </message>
    <message>
        <source>Registration failed: %1</source>
        <translation>Anmeldung fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>The script can be played; it has %1 steps.</source>
        <translation>Das Skript lässt sich abspielen; es hat %1 Schritte.</translation>
    </message>
    <message>
        <source>%1 (and %2 more).</source>
        <translation>%1 (und %2 weitere).</translation>
    </message>
    <message>
        <source>A voice modem answers at %1 (its sound has 16 bits).</source>
        <translation>An %1 antwortet ein Sprachmodem (Ton mit 16 Bit).</translation>
    </message>
    <message>
        <source>A voice modem answers at %1 (its sound has 8 bits, mu-law).</source>
        <translation>An %1 antwortet ein Sprachmodem (Ton mit 8 Bit, µ-law).</translation>
    </message>
    <message>
        <source>A voice modem answers at %1 (its sound has 8 bits).</source>
        <translation>An %1 antwortet ein Sprachmodem (Ton mit 8 Bit).</translation>
    </message>
    <message>
        <source>Nothing answers at %1: there is no modem, or it is switched off.</source>
        <translation>An %1 antwortet nichts: dort ist kein Modem, oder es ist ausgeschaltet.</translation>
    </message>
    <message>
        <source>The device at %1 answers, but not as a modem does.</source>
        <translation>Das Gerät an %1 antwortet, aber nicht wie ein Modem.</translation>
    </message>
    <message>
        <source>A modem answers at %1, but it is not a voice modem (it does not offer +FCLASS=8): it cannot speak or record.</source>
        <translation>An %1 antwortet ein Modem, aber kein Sprachmodem (es bietet +FCLASS=8 nicht an): es kann nicht sprechen und aufnehmen.</translation>
    </message>
    <message>
        <source>A voice modem answers at %1, but it offers no supported audio format.</source>
        <translation>An %1 antwortet ein Sprachmodem, aber ohne ein unterstütztes Tonformat.</translation>
    </message>
    <message>
        <source>The server %1 refuses the login (%2): the user &quot;%3&quot; or the password is wrong, or the account may not be used from here.</source>
        <translation>Server %1 lehnt die Anmeldung ab (%2): Benutzer „%3“ oder Passwort ist falsch, oder das Konto darf von hier nicht benutzt werden.</translation>
    </message>
    <message>
        <source>The server %1 refuses the login (%2): the user &quot;%3&quot; or the password is wrong.</source>
        <translation>Server %1 lehnt die Anmeldung ab (%2): Benutzer „%3“ oder Passwort ist falsch.</translation>
    </message>
    <message>
        <source>The server %1 knows no user &quot;%2&quot; (%3).</source>
        <translation>Server %1 kennt keinen Benutzer „%2“ (%3).</translation>
    </message>
    <message>
        <source>The server %1 is there, but cannot do it now (%2).</source>
        <translation>Server %1 ist da, kann es aber gerade nicht (%2).</translation>
    </message>
    <message>
        <source>The server %1 does not accept it (%2).</source>
        <translation>Server %1 nimmt es nicht an (%2).</translation>
    </message>
    <message>
        <source>There is no answer from %1 within %2 s: the server&apos;s name, its port, the transport or the network may be wrong. The port for TLS is often 5061.</source>
        <translation>Von %1 kam innerhalb von %2 s keine Antwort: Name, Port oder Transport des Servers oder das Netz könnten falsch sein. Der Port für TLS ist oft 5061.</translation>
    </message>
    <message>
        <source>There is no answer from %1 within %2 s: the server&apos;s name, its port, the transport or the network may be wrong.</source>
        <translation>Von %1 kam innerhalb von %2 s keine Antwort: Name, Port oder Transport des Servers oder das Netz könnten falsch sein.</translation>
    </message>
    <message>
        <source>Calls can come in at %1; there is no account to register.</source>
        <translation>Anrufe können bei %1 ankommen; es gibt kein Konto anzumelden.</translation>
    </message>
    <message>
        <source>Calls can come in at %1, and the server %2 accepts the account %3.</source>
        <translation>Anrufe können bei %1 ankommen, und Server %2 nimmt das Konto %3 an.</translation>
    </message>
    <message>
        <source>Calls can come in at %1, and all accounts are accepted: %2.</source>
        <translation>Anrufe können bei %1 ankommen, und alle Konten werden angenommen: %2.</translation>
    </message>
    <message>
        <source>The address for calls, %1, is not an address of this computer.</source>
        <translation>Die Adresse für Anrufe, %1, gehört nicht zu diesem Computer.</translation>
    </message>
    <message>
        <source>Port %1 is taken by another program: end that program, or use another address for calls, such as %2.</source>
        <translation>Port %1 ist von einem anderen Programm belegt: dieses beenden oder eine andere Adresse für Anrufe verwenden, etwa %2.</translation>
    </message>
    <message>
        <source>%1, with TLS at %2</source>
        <translation>%1, mit TLS bei %2</translation>
    </message>
    <message>
        <source>Another program uses port %1: end it, or choose another port in Options, Devices</source>
        <translation>Port %1 ist belegt: Programm dort beenden oder unter Einstellungen, Geräte ändern</translation>
    </message>
    <message>
        <source>The address for calls %2 is not there: connect its network, or use * in Options, Devices</source>
        <translation>Die Adresse für Anrufe %2 ist nicht da: ihr Netz verbinden oder unter Einstellungen, Geräte * verwenden</translation>
    </message>
    <message>
        <source>The address for calls %2 is not found: choose another one in Options, Devices</source>
        <translation>Die Adresse für Anrufe %2 wird nicht gefunden: unter Einstellungen, Geräte eine andere wählen</translation>
    </message>
    <message>
        <source>ORVEN may not use port %1: choose a port above 1023 in Options, Devices</source>
        <translation>ORVEN darf Port %1 nicht verwenden: unter Einstellungen, Geräte einen Port über 1023 wählen</translation>
    </message>
    <message>
        <source>ORVEN cannot wait for calls at %2 (%3): choose another address in Options, Devices</source>
        <translation>ORVEN kann bei %2 nicht auf Anrufe warten (%3): unter Einstellungen, Geräte eine andere Adresse wählen</translation>
    </message>
    <message>
        <source>This computer has no network: connect its cable or Wi-Fi</source>
        <translation>Dieser Computer hat kein Netz: Kabel oder WLAN verbinden</translation>
    </message>
    <message>
        <source>The server %1 asks for a login that ORVEN does not know: ask its operator</source>
        <translation>Server %1 verlangt eine Anmeldung, die ORVEN nicht kennt: den Betreiber fragen</translation>
    </message>
    <message>
        <source>The server %1 refuses the password of %2: correct it in Options, Devices</source>
        <translation>Server %1 lehnt das Passwort von %2 ab: unter Einstellungen, Geräte berichtigen</translation>
    </message>
    <message>
        <source>The server %1 does not allow %2 here: correct user and password in Options, Devices</source>
        <translation>Server %1 erlaubt %2 hier nicht: Benutzer und Passwort unter Einstellungen, Geräte berichtigen</translation>
    </message>
    <message>
        <source>The server %1 does not know the user %2: correct it in Options, Devices</source>
        <translation>Server %1 kennt den Benutzer %2 nicht: unter Einstellungen, Geräte berichtigen</translation>
    </message>
    <message>
        <source>The server %1 cannot register %2 now (%3): ORVEN tries again</source>
        <translation>Server %1 kann %2 gerade nicht anmelden (%3): ORVEN versucht es wieder</translation>
    </message>
    <message>
        <source>The server %1 does not accept %2 (%3): check the account in Options, Devices</source>
        <translation>Server %1 nimmt %2 nicht an (%3): das Konto unter Einstellungen, Geräte prüfen</translation>
    </message>
    <message>
        <source>Check the server&apos;s name, and whether this computer is online.</source>
        <translation>Den Namen des Servers prüfen, und ob dieser Computer online ist.</translation>
    </message>
    <message>
        <source>Check the server&apos;s name and port. Many networks block port 25: providers take mail at port 587, or at port 465 with smtps:// before the name.</source>
        <translation>Name und Port des Servers prüfen. Viele Netze sperren Port 25: Anbieter nehmen E-Mail an Port 587 an, oder an Port 465 mit smtps:// vor dem Namen.</translation>
    </message>
    <message>
        <source>Check the port: port 465 needs smtps:// before the server&apos;s name, ports 587 and 25 do not.</source>
        <translation>Den Port prüfen: Port 465 braucht smtps:// vor dem Namen des Servers, die Ports 587 und 25 nicht.</translation>
    </message>
    <message>
        <source>%1 refuses connections</source>
        <translation>%1 lehnt Verbindungen ab</translation>
    </message>
    <message>
        <source>%1 cannot be reached</source>
        <translation>%1 ist nicht erreichbar</translation>
    </message>
    <message>
        <source>%1 cannot be reached: %2</source>
        <translation>%1 ist nicht erreichbar: %2</translation>
    </message>
    <message>
        <source>%1 offers no login with a password</source>
        <translation>%1 bietet keine Anmeldung mit Passwort an</translation>
    </message>
    <message>
        <source>Check the port, or leave user and password empty if the server needs no login.</source>
        <translation>Den Port prüfen, oder Benutzer und Passwort leer lassen, wenn der Server keine Anmeldung verlangt.</translation>
    </message>
    <message>
        <source>%1 refused the login: %2</source>
        <translation>%1 hat die Anmeldung abgelehnt: %2</translation>
    </message>
    <message>
        <source>Check user and password. Some providers want a password of its own for each program.</source>
        <translation>Benutzer und Passwort prüfen. Manche Anbieter verlangen für jedes Programm ein eigenes Passwort.</translation>
    </message>
    <message>
        <source>The server may accept it later.</source>
        <translation>Vielleicht nimmt der Server sie später an.</translation>
    </message>
    <message>
        <source>Check the recipient&apos;s address. Many servers pass mails on only after a login with user and password.</source>
        <translation>Die Adresse des Empfängers prüfen. Viele Server leiten E-Mails nur nach einer Anmeldung mit Benutzer und Passwort weiter.</translation>
    </message>
    <message>
        <source>Check the sender&apos;s address, which often has to be the account&apos;s own, and user and password.</source>
        <translation>Die Adresse des Absenders prüfen, die oft die des Kontos sein muss, sowie Benutzer und Passwort.</translation>
    </message>
    <message>
        <source>The server&apos;s provider can explain its reply.</source>
        <translation>Der Anbieter des Servers kann die Antwort erklären.</translation>
    </message>
    <message>
        <source>%1 does not answer as a mail server</source>
        <translation>%1 antwortet nicht wie ein Mailserver</translation>
    </message>
    <message>
        <source>%1 does not answer as a mail server: %2</source>
        <translation>%1 antwortet nicht wie ein Mailserver: %2</translation>
    </message>
    <message>
        <source>Try smtps:// before the server&apos;s name. If the server is in your own home, the login can be allowed without encryption.</source>
        <translation>smtps:// vor dem Namen des Servers versuchen. Steht der Server im eigenen Haus, kann die Anmeldung auch ohne Verschlüsselung erlaubt werden.</translation>
    </message>
    <message>
        <source>%1 offers no encryption</source>
        <translation>%1 bietet keine Verschlüsselung an</translation>
    </message>
    <message>
        <source>%1 offers no encryption: %2</source>
        <translation>%1 bietet keine Verschlüsselung an: %2</translation>
    </message>
    <message>
        <source>%1 stopped answering (timed out)</source>
        <translation>%1 antwortet nicht mehr (Zeit abgelaufen)</translation>
    </message>
    <message>
        <source>the server&apos;s name %1 is not known</source>
        <translation>der Servername %1 ist nicht bekannt</translation>
    </message>
    <message>
        <source>connecting to %1 timed out</source>
        <translation>die Verbindung zu %1 kam nicht rechtzeitig zustande</translation>
    </message>
    <message>
        <source>the certificate of %1 is not trusted: %2</source>
        <translation>dem Zertifikat von %1 wird nicht vertraut: %2</translation>
    </message>
    <message>
        <source>Write the server&apos;s name as its provider does, and check this computer&apos;s clock.</source>
        <translation>Den Namen des Servers so schreiben wie der Anbieter und die Uhr dieses Computers prüfen.</translation>
    </message>
    <message>
        <source>no encrypted connection to %1: %2</source>
        <translation>keine verschlüsselte Verbindung zu %1: %2</translation>
    </message>
    <message>
        <source>%1 refused the mail: %2 (%3)</source>
        <translation>%1 hat die E-Mail abgelehnt: %2 (%3)</translation>
    </message>
    <message>
        <source>the connection to %1 was lost: %2</source>
        <translation>die Verbindung zu %1 ist abgebrochen: %2</translation>
    </message>
    <message>
        <source>That does not work: %1.</source>
        <translation>Das geht nicht: %1.</translation>
    </message>
    <message>
        <source>That does not work: %1. %2</source>
        <translation>Das geht nicht: %1. %2</translation>
    </message>
    <message>
        <source>Enter one address, like anna@example.org.</source>
        <translation>Eine Adresse eingeben, etwa anna@example.org.</translation>
    </message>
    <message>
        <source>there is no recipient address</source>
        <translation>die Adresse des Empfängers fehlt</translation>
    </message>
    <message>
        <source>there is no sender address</source>
        <translation>die Adresse des Absenders fehlt</translation>
    </message>
    <message>
        <source>the recipient address &quot;%1&quot; is not a single mail address</source>
        <translation>die Adresse des Empfängers „%1“ ist keine einzelne E-Mail-Adresse</translation>
    </message>
    <message>
        <source>the sender address &quot;%1&quot; is not a single mail address</source>
        <translation>die Adresse des Absenders „%1“ ist keine einzelne E-Mail-Adresse</translation>
    </message>
    <message>
        <source>There is room for only %1 minutes of messages: delete files, or choose another folder for messages in Options.</source>
        <translation>Es ist nur noch Platz für %1 Minuten Nachrichten: Dateien löschen oder in den Einstellungen einen anderen Ordner für Nachrichten wählen.</translation>
    </message>
    <message>
        <source>There is room for %1 hours of messages.</source>
        <translation>Es ist Platz für %1 Stunden Nachrichten.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; can be played.</source>
        <translation>„%1“ lässt sich abspielen.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is silent: record another greeting with Tools, Greeting Creator.</source>
        <translation>„%1“ ist stumm: mit Extras, Ansage erstellen eine andere aufnehmen.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be played, so callers hear only the beep: choose another greeting in Options, Answer Mode.</source>
        <translation>„%1“ lässt sich nicht abspielen, Anrufer hören nur den Signalton: unter Einstellungen, Rufannahme eine andere Ansage wählen.</translation>
    </message>
    <message>
        <source>Messages are not recorded: switch on &quot;Record Message&quot; in the toolbar.</source>
        <translation>Nachrichten werden nicht aufgenommen: „Nachrichten aufnehmen“ in der Werkzeugleiste einschalten.</translation>
    </message>
    <message>
        <source>SIP, direct calls</source>
        <translation>SIP, direkte Anrufe</translation>
    </message>
    <message>
        <source>SIP account</source>
        <translation>SIP-Konto</translation>
    </message>
    <message>
        <source>%1 is free.</source>
        <translation>%1 ist frei.</translation>
    </message>
    <message>
        <source>%1 is taken by another program: end that program, or use another address for calls, such as %2.</source>
        <translation>%1 ist von einem anderen Programm belegt: dieses beenden oder eine andere Adresse für Anrufe verwenden, etwa %2.</translation>
    </message>
    <message>
        <source>%1 greetings can be played.</source>
        <translation>%1 Ansagen lassen sich abspielen.</translation>
    </message>
    <message>
        <source>%1 cannot be read or is damaged: start the program, which saves what can be saved.</source>
        <translation>%1 lässt sich nicht lesen oder ist beschädigt: das Programm starten, es rettet, was zu retten ist.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is set up.</source>
        <translation>„%1“ ist eingerichtet.</translation>
    </message>
    <message>
        <source>windows</source>
        <translation>Fenster</translation>
    </message>
    <message>
        <source>the telephone line (SIP)</source>
        <translation>die Telefonleitung (SIP)</translation>
    </message>
    <message>
        <source>encrypted calls and mail</source>
        <translation>verschlüsselte Anrufe und E-Mail</translation>
    </message>
    <message>
        <source>touch tones, G.711 and G.722</source>
        <translation>Tonwahl, G.711 und G.722</translation>
    </message>
    <message>
        <source>calls in Opus</source>
        <translation>Anrufe in Opus</translation>
    </message>
    <message>
        <source>sound files</source>
        <translation>Tondateien</translation>
    </message>
    <message>
        <source>sample rate conversion</source>
        <translation>Umrechnung der Abtastrate</translation>
    </message>
    <message>
        <source>the records of calls</source>
        <translation>die Anrufliste</translation>
    </message>
    <message>
        <source>mail</source>
        <translation>E-Mail</translation>
    </message>
    <message>
        <source>sound cards</source>
        <translation>Soundkarten</translation>
    </message>
    <message>
        <source>typed greetings (helper TTS)</source>
        <translation>getippte Ansagen (Hilfsprogramm TTS)</translation>
    </message>
    <message>
        <source>the start at login</source>
        <translation>den Start beim Anmelden</translation>
    </message>
    <message>
        <source>pictures of the commands</source>
        <translation>Symbole der Befehle</translation>
    </message>
    <message>
        <source>UNKNOWN</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>The server of the account is missing.</source>
        <translation>Der Server des Kontos fehlt.</translation>
    </message>
    <message>
        <source>The user of the account is missing.</source>
        <translation>Der Benutzer des Kontos fehlt.</translation>
    </message>
    <message>
        <source>The server is wrong: expected its name or address, perhaps with &quot;:&quot; and a port, for example sip.example.org or 192.168.1.1:5060.</source>
        <translation>Der Server ist falsch: erwartet wird Name oder Adresse, wenn nötig mit „:“ und Port, etwa sip.example.org oder 192.168.1.1:5060.</translation>
    </message>
    <message>
        <source>The user is wrong: expected a name or number without blanks, @ and &lt;&gt;.</source>
        <translation>Der Benutzer ist falsch: erwartet wird ein Name oder eine Nummer ohne Leerzeichen, @ und &lt;&gt;.</translation>
    </message>
    <message>
        <source>The time between rings is wrong: expected a number of seconds from 1 to 60.</source>
        <translation>Der Klingelabstand ist falsch: erwartet wird eine Zahl von 1 bis 60 Sekunden.</translation>
    </message>
    <message>
        <source>The line&apos;s name is missing.</source>
        <translation>Der Name der Leitung fehlt.</translation>
    </message>
    <message>
        <source>It can be played.</source>
        <translation>Er lässt sich abspielen.</translation>
    </message>
    <message>
        <source>It is silent: delete beep.wav and start the program again.</source>
        <translation>Er ist stumm: beep.wav löschen und das Programm neu starten.</translation>
    </message>
    <message>
        <source>beep.wav cannot be played, so callers do not know when to speak: start the program again.</source>
        <translation>beep.wav lässt sich nicht abspielen, Anrufer wissen nicht, wann sie sprechen können: das Programm neu starten.</translation>
    </message>
    <message>
        <source>Keep the computer awake while the line is on</source>
        <translation>Den Computer wach halten, solange die Leitung an ist</translation>
    </message>
    <message>
        <source>A computer that sleeps takes no calls</source>
        <translation>Ein Computer im Ruhezustand nimmt keine Anrufe an</translation>
    </message>
    <message>
        <source>Notify me of a new message</source>
        <translation>Eine neue Nachricht melden</translation>
    </message>
    <message>
        <source>The desktop shows who called, unless this window is in front</source>
        <translation>Der Desktop zeigt, wer angerufen hat, wenn dieses Fenster nicht vorn ist</translation>
    </message>
    <message>
        <source>Notify me of a call without a message</source>
        <translation>Einen Anruf ohne Nachricht melden</translation>
    </message>
    <message>
        <source>New message</source>
        <translation>Neue Nachricht</translation>
    </message>
    <message>
        <source>Missed call</source>
        <translation>Verpasster Anruf</translation>
    </message>
    <message>
        <source>New message from %1</source>
        <translation>Neue Nachricht von %1</translation>
    </message>
    <message>
        <source>Missed call from %1</source>
        <translation>Verpasster Anruf von %1</translation>
    </message>
    <message>
        <source>%1, at %2</source>
        <translation>%1, um %2</translation>
    </message>
    <message>
        <source>At %1</source>
        <translation>Um %1</translation>
    </message>
    <message>
        <source>%1, at %2, %3 seconds</source>
        <translation>%1, um %2, %3 Sekunden</translation>
    </message>
    <message>
        <source>At %1, %2 seconds</source>
        <translation>Um %1, %2 Sekunden</translation>
    </message>
    <message>
        <source>Modem</source>
        <translation>Modem</translation>
    </message>
    <message>
        <source>Simulation</source>
        <translation>Simulation</translation>
    </message>
    <message>
        <source>Registering</source>
        <translation>Wird angemeldet</translation>
    </message>
    <message>
        <source>Registered</source>
        <translation>Angemeldet</translation>
    </message>
    <message>
        <source>The simulated line has no script: nobody calls.</source>
        <translation>Die simulierte Leitung hat kein Skript: niemand ruft an.</translation>
    </message>
    <message>
        <source>No modem is plugged in.</source>
        <translation>Kein Modem angeschlossen.</translation>
    </message>
    <message>
        <source>Mails: %1 failed, %2 not sent yet: %3</source>
        <translation>E-Mails: %1 nicht zu senden, %2 noch nicht gesendet: %3</translation>
    </message>
    <message>
        <source>A mail failed: %1</source>
        <translation>Eine E-Mail ließ sich nicht senden: %1</translation>
    </message>
    <message>
        <source>%1 mails failed: %2</source>
        <translation>%1 E-Mails ließen sich nicht senden: %2</translation>
    </message>
    <message>
        <source>A mail waits: %1</source>
        <translation>Eine E-Mail wartet: %1</translation>
    </message>
    <message>
        <source>%1 mails wait: %2</source>
        <translation>%1 E-Mails warten: %2</translation>
    </message>
    <message>
        <source>A setting of the line is wrong, %1: correct it in Options, Devices</source>
        <translation>Eine Angabe der Leitung ist falsch, %1: unter Einstellungen, Geräte berichtigen</translation>
    </message>
    <message>
        <source>The test failed: %1.</source>
        <translation>Der Test ist fehlgeschlagen: %1.</translation>
    </message>
    <message>
        <source>%1.</source>
        <translation>%1.</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>orven::ActionsEngine</name>
    <message>
        <source>Send Mail : %1 %</source>
        <translation>E-Mail wird gesendet: %1 %</translation>
    </message>
    <message>
        <source>Mail Was Sent</source>
        <translation>E-Mail wurde gesendet</translation>
    </message>
    <message>
        <source>Message: %1 seconds, attached</source>
        <translation>Nachricht: %1 Sekunden, im Anhang</translation>
    </message>
    <message>
        <source>A message was left, but it could not be stored.</source>
        <translation>Eine Nachricht wurde hinterlassen, konnte aber nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>No message was left.</source>
        <translation>Es wurde keine Nachricht hinterlassen.</translation>
    </message>
    <message>
        <source>Caller: %1</source>
        <translation>Anrufer: %1</translation>
    </message>
    <message>
        <source>Number: %1</source>
        <translation>Rufnummer: %1</translation>
    </message>
    <message>
        <source>Date: %1</source>
        <translation>Datum: %1</translation>
    </message>
    <message>
        <source>Time: %1</source>
        <translation>Zeit: %1</translation>
    </message>
</context>
<context>
    <name>orven::AfterCall</name>
    <message>
        <source>New Call</source>
        <translation>Neuer Anruf</translation>
    </message>
    <message>
        <source>New Message</source>
        <translation>Neue Nachricht</translation>
    </message>
    <message>
        <source>Call ended</source>
        <translation>Anruf beendet</translation>
    </message>
</context>
<context>
    <name>orven::AnsweringMachine</name>
    <message>
        <source>Messages are played to the telephone: the selection stays on them</source>
        <translation>Fernabfrage läuft: die Auswahl bleibt bei der abgespielten Nachricht</translation>
    </message>
</context>
<context>
    <name>orven::CallListWidget</name>
    <message>
        <source>Calls</source>
        <translation>Anrufe</translation>
    </message>
</context>
<context>
    <name>orven::CallModel</name>
    <message>
        <source>Type</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Rufnummer</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>New message</source>
        <translation>Neue Nachricht</translation>
    </message>
    <message>
        <source>New call without a message</source>
        <translation>Neuer Anruf ohne Nachricht</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Nachricht</translation>
    </message>
    <message>
        <source>Call without a message</source>
        <translation>Anruf ohne Nachricht</translation>
    </message>
</context>
<context>
    <name>orven::CallNotices</name>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
</context>
<context>
    <name>orven::CallSequence</name>
    <message>
        <source>InComing Call</source>
        <translation>Ankommender Anruf</translation>
    </message>
    <message>
        <source>Ring :%1</source>
        <translation>Klingelzeichen: %1</translation>
    </message>
    <message>
        <source>Ring : %1</source>
        <translation>Klingelzeichen: %1</translation>
    </message>
    <message>
        <source>Caller ID Information</source>
        <translation>Rufnummer übermittelt</translation>
    </message>
    <message>
        <source>Line Connected</source>
        <translation>Verbunden</translation>
    </message>
    <message>
        <source>Line Disconnected</source>
        <translation>Getrennt</translation>
    </message>
</context>
<context>
    <name>orven::CallStore</name>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
</context>
<context>
    <name>orven::CallerNotice</name>
    <message>
        <source>Incoming call</source>
        <translation>Ankommender Anruf</translation>
    </message>
    <message>
        <source>Call from %1</source>
        <translation>Anruf von %1</translation>
    </message>
    <message>
        <source>Answer Now</source>
        <translation>Annehmen</translation>
    </message>
    <message>
        <source>Drop Call</source>
        <translation>Auflegen</translation>
    </message>
</context>
<context>
    <name>orven::CheckUp</name>
    <message>
        <source>&quot;%1&quot; is open.</source>
        <translation>„%1“ ist offen.</translation>
    </message>
    <message>
        <source>Calls can come in at %1.</source>
        <translation>Anrufe können bei %1 ankommen.</translation>
    </message>
    <message>
        <source>The messages folder cannot be reached: %1.</source>
        <translation>Der Ordner der Nachrichten ist nicht erreichbar: %1.</translation>
    </message>
    <message>
        <source>Calls and messages cannot be stored: %1. Make room or change the permissions.</source>
        <translation>Anrufe und Nachrichten lassen sich nicht speichern: %1. Platz schaffen oder die Rechte ändern.</translation>
    </message>
    <message>
        <source>Messages are played on &quot;%1&quot;.</source>
        <translation>Nachrichten werden auf „%1“ abgespielt.</translation>
    </message>
    <message>
        <source>It shows %1 %2, but the latest call was later: set the date and the time.</source>
        <translation>Sie zeigt %1 %2, aber der letzte Anruf war später: Datum und Uhrzeit stellen.</translation>
    </message>
    <message>
        <source>It shows %1 %2.</source>
        <translation>Sie zeigt %1 %2.</translation>
    </message>
    <message>
        <source>There was no answer within %1 s: a disk or a server hangs.</source>
        <translation>Innerhalb von %1 s kam keine Antwort: ein Datenträger oder ein Server hängt.</translation>
    </message>
    <message>
        <source>The program is running.</source>
        <translation>Das Programm läuft.</translation>
    </message>
    <message>
        <source>It is not open yet, and is tried again by itself.</source>
        <translation>Sie ist noch nicht offen; es wird von selbst weiter versucht.</translation>
    </message>
    <message>
        <source>It is off, so nobody answers: press On in the toolbar.</source>
        <translation>Sie ist aus, niemand nimmt an: in der Werkzeugleiste einschalten.</translation>
    </message>
    <message>
        <source>No telephone line is chosen: choose one in Options, Devices.</source>
        <translation>Es ist keine Telefonleitung gewählt: unter Einstellungen, Geräte eine wählen.</translation>
    </message>
    <message>
        <source>There is no line to register.</source>
        <translation>Es gibt keine Leitung anzumelden.</translation>
    </message>
    <message>
        <source>This kind of line has no server.</source>
        <translation>Diese Art Leitung hat keinen Server.</translation>
    </message>
    <message>
        <source>It was not checked, because the port comes first.</source>
        <translation>Nicht geprüft, weil der Port zuerst kommt.</translation>
    </message>
    <message>
        <source>The line has no account: it is called at its address.</source>
        <translation>Die Leitung hat kein Konto: sie wird unter ihrer Adresse angerufen.</translation>
    </message>
    <message>
        <source>Calls and messages can be stored.</source>
        <translation>Anrufe und Nachrichten lassen sich speichern.</translation>
    </message>
    <message>
        <source>No sound card is found: messages can be heard by telephone only.</source>
        <translation>Keine Soundkarte gefunden: Nachrichten sind nur per Telefon zu hören.</translation>
    </message>
    <message>
        <source>The chosen sound card is not there: connect it, or choose another one in Options, Devices.</source>
        <translation>Die gewählte Soundkarte ist nicht da: anschließen oder unter Einstellungen, Geräte eine andere wählen.</translation>
    </message>
    <message>
        <source>Default output</source>
        <translation>Standardausgabe</translation>
    </message>
    <message>
        <source>Mail is switched off.</source>
        <translation>E-Mail ist ausgeschaltet.</translation>
    </message>
    <message>
        <source>%1 %2.</source>
        <translation>%1 %2.</translation>
    </message>
    <message>
        <source>%1.</source>
        <translation>%1.</translation>
    </message>
</context>
<context>
    <name>orven::EmptyCallList</name>
    <message>
        <source>No calls yet.</source>
        <translation>Noch keine Anrufe.</translation>
    </message>
    <message>
        <source>Set up your telephone</source>
        <translation>Telefon einrichten</translation>
    </message>
    <message>
        <source>Choose your greeting</source>
        <translation>Ansage wählen</translation>
    </message>
    <message>
        <source>See the password for listening from outside</source>
        <translation>Passwort für die Fernabfrage ansehen</translation>
    </message>
</context>
<context>
    <name>orven::EntryRoutine</name>
    <message>
        <source>ORVEN is still running</source>
        <translation>ORVEN läuft bereits</translation>
    </message>
</context>
<context>
    <name>orven::EventsDialog</name>
    <message>
        <source>Add Sound</source>
        <translation>Klang hinzufügen</translation>
    </message>
</context>
<context>
    <name>orven::GreetingCommands</name>
    <message>
        <source>No file is called &quot;%1&quot;. To play or delete greetings, use Options, Answer Mode</source>
        <translation>Keine Datei heißt „%1“. Ansagen lassen sich unter Einstellungen, Rufannahme, anhören und löschen</translation>
    </message>
</context>
<context>
    <name>orven::GreetingCreator</name>
    <message>
        <source>Recording failed; see the system log</source>
        <translation>Die Aufnahme ist fehlgeschlagen; Näheres im Systemprotokoll</translation>
    </message>
    <message>
        <source>Recording from the microphone</source>
        <translation>Aufnahme vom Mikrofon</translation>
    </message>
    <message>
        <source>From the microphone, %1</source>
        <translation>Vom Mikrofon, %1</translation>
    </message>
    <message>
        <source>The recording could not be stored; see the system log</source>
        <translation>Die Aufnahme konnte nicht gespeichert werden; Näheres im Systemprotokoll</translation>
    </message>
    <message>
        <source>Nothing came from the microphone; see the system log</source>
        <translation>Vom Mikrofon kam nichts; Näheres im Systemprotokoll</translation>
    </message>
    <message>
        <source>A call was answered and ended the recording. The part before it is kept.</source>
        <translation>Ein angenommener Anruf hat die Aufnahme beendet. Der Teil davor ist erhalten.</translation>
    </message>
    <message>
        <source>The greeting is being made from the text</source>
        <translation>Die Ansage wird aus dem Text erzeugt</translation>
    </message>
    <message>
        <source>From the text, %1</source>
        <translation>Aus dem Text, %1</translation>
    </message>
    <message>
        <source>No greeting could be made from the text. Does it have words, and is there room on the disk?</source>
        <translation>Aus dem Text konnte keine Ansage erzeugt werden. Enthält er Wörter, und ist noch Platz auf dem Datenträger?</translation>
    </message>
    <message>
        <source>Empty Message</source>
        <translation>Es gibt noch keine Aufnahme</translation>
    </message>
    <message>
        <source>Enter Greeting Name</source>
        <translation>Bitte einen Namen für die Ansage eingeben</translation>
    </message>
    <message>
        <source>The greeting will be saved as soon as it is made from the text</source>
        <translation>Die Ansage wird gespeichert, sobald sie aus dem Text erzeugt ist</translation>
    </message>
    <message>
        <source>The take was replaced; please create the greeting again</source>
        <translation>Die Aufnahme wurde ersetzt; bitte die Ansage noch einmal erzeugen</translation>
    </message>
    <message>
        <source>The greeting could not be saved; see the system log</source>
        <translation>Die Ansage konnte nicht gespeichert werden; Näheres im Systemprotokoll</translation>
    </message>
</context>
<context>
    <name>orven::GreetingPlayer</name>
    <message>
        <source>Can&apos;t Delete Last Greeting.</source>
        <translation>Die letzte Ansage kann nicht gelöscht werden.</translation>
    </message>
    <message>
        <source>Delete %1 ?</source>
        <translation>%1 löschen?</translation>
    </message>
</context>
<context>
    <name>orven::LineAlarm</name>
    <message>
        <source>The telephone line works again</source>
        <translation>Die Telefonleitung funktioniert wieder</translation>
    </message>
    <message>
        <source>Calls can come in.</source>
        <translation>Anrufe können ankommen.</translation>
    </message>
    <message>
        <source>Trouble with the telephone line</source>
        <translation>Störung der Telefonleitung</translation>
    </message>
    <message>
        <source>%1.</source>
        <translation>%1.</translation>
    </message>
</context>
<context>
    <name>orven::LineManager</name>
    <message>
        <source>Select Modem Device From Options/Devices [Modem Device]</source>
        <translation>Bitte unter Einstellungen/Geräte eine Telefonleitung wählen</translation>
    </message>
    <message>
        <source>Monitoring %1</source>
        <translation>%1 wird überwacht</translation>
    </message>
    <message>
        <source>Off Mode</source>
        <translation>Ausgeschaltet</translation>
    </message>
</context>
<context>
    <name>orven::LinesDialog</name>
    <message>
        <source>Remove the line &quot;%1&quot; ?</source>
        <translation>Die Leitung „%1“ entfernen?</translation>
    </message>
    <message>
        <source>The telephone lines could not be stored.<byte value="xd"/>
%1</source>
        <translation>Die Telefonleitungen konnten nicht gespeichert werden.<byte value="xd"/>
%1</translation>
    </message>
    <message>
        <source>The changed lines are used from the next start on.</source>
        <translation>Die geänderten Leitungen gelten ab dem nächsten Start.</translation>
    </message>
    <message>
        <source>A call is in progress. The changed lines are used when it is over.</source>
        <translation>Gerade läuft ein Anruf. Die geänderten Leitungen gelten, sobald er zu Ende ist.</translation>
    </message>
    <message>
        <source>Another line has this name: expected a unique name.</source>
        <translation>Eine andere Leitung heißt schon so: der Name muss eindeutig sein.</translation>
    </message>
</context>
<context>
    <name>orven::ListCommands</name>
    <message>
        <source>Delete Call %1 Information ?</source>
        <translation>Anruf %1 löschen?</translation>
    </message>
    <message>
        <source>Clear Calls List ?</source>
        <translation>Anrufliste leeren?</translation>
    </message>
</context>
<context>
    <name>orven::LogViewer</name>
    <message>
        <source>There are no such logs.</source>
        <translation>Es gibt keine solchen Protokolle.</translation>
    </message>
    <message>
        <source>Reading… %1</source>
        <translation>Wird gelesen … %1</translation>
    </message>
    <message>
        <source>%1, the rest of this large file is left out</source>
        <translation>%1, der Rest dieser großen Datei fehlt</translation>
    </message>
    <message>
        <source>Delete %1 ?</source>
        <translation>%1 löschen?</translation>
    </message>
</context>
<context>
    <name>orven::MailSender</name>
    <message>
        <source>%1; after three days it is not tried again but kept as %2</source>
        <translation>%1; nach drei Tagen wird sie nicht mehr gesendet, sondern als %2 aufbewahrt</translation>
    </message>
    <message>
        <source>%1; after three days it is not tried again</source>
        <translation>%1; nach drei Tagen wird sie nicht mehr gesendet</translation>
    </message>
</context>
<context>
    <name>orven::MainCommands</name>
    <message>
        <source>No program on this computer opens %1</source>
        <translation>Kein Programm auf diesem Computer öffnet %1</translation>
    </message>
</context>
<context>
    <name>orven::MainMenus</name>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Hide</source>
        <translation>Ausblenden</translation>
    </message>
    <message>
        <source>&amp;Exit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>First</source>
        <translation>Erster</translation>
    </message>
    <message>
        <source>Last</source>
        <translation>Letzter</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Nächster</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Voriger</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>Ereignisse</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>In Coming Call</source>
        <translation>Ankommender Anruf</translation>
    </message>
    <message>
        <source>Disconnect Call</source>
        <translation>Anrufende</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Aktionen</translation>
    </message>
    <message>
        <source>E-Mail</source>
        <translation>E-Mail</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>Programm</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>Geräte</translation>
    </message>
    <message>
        <source>Answer Mode</source>
        <translation>Rufannahme</translation>
    </message>
    <message>
        <source>Advance</source>
        <translation>Erweitert</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Extras</translation>
    </message>
    <message>
        <source>Greeting Creator</source>
        <translation>Ansage erstellen</translation>
    </message>
    <message>
        <source>Web Page on Greetings</source>
        <translation>Webseite über Ansagen</translation>
    </message>
    <message>
        <source>Web Page on Sounds</source>
        <translation>Webseite über Klänge</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Contents</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <source>ORVEN Web Page</source>
        <translation>Webseite von ORVEN</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über ORVEN</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Nachricht</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Speichern unter</translation>
    </message>
    <message>
        <source>Mark as unread</source>
        <translation>Als ungehört markieren</translation>
    </message>
    <message>
        <source>Mark as read</source>
        <translation>Als gehört markieren</translation>
    </message>
    <message>
        <source>Call</source>
        <translation>Anruf</translation>
    </message>
    <message>
        <source>ORVEN</source>
        <translation>ORVEN</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>On</source>
        <translation>Ein</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Check-up…</source>
        <translation>Überprüfung…</translation>
    </message>
    <message>
        <source>Set-up Assistant…</source>
        <translation>Einrichtungsassistent…</translation>
    </message>
</context>
<context>
    <name>orven::MainStatusBar</name>
    <message>
        <source>Line status</source>
        <translation>Zustand der Leitung</translation>
    </message>
    <message>
        <source>Grid lines</source>
        <translation>Gitterlinien</translation>
    </message>
    <message>
        <source>Grid lines and whole-row selection in the calls list</source>
        <translation>Gitterlinien und Auswahl ganzer Zeilen in der Anrufliste</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Use it now</source>
        <translation>Jetzt verwenden</translation>
    </message>
    <message>
        <source>%1 is used after the call.</source>
        <translation>%1 wird nach dem Anruf verwendet.</translation>
    </message>
    <message>
        <source>%1 is chosen.</source>
        <translation>%1 ist gewählt.</translation>
    </message>
    <message>
        <source>Use %1 now, in place of the line that is open</source>
        <translation>%1 jetzt anstelle der offenen Leitung verwenden</translation>
    </message>
</context>
<context>
    <name>orven::MainWindow</name>
    <message>
        <source>ORVEN goes on answering calls. Its icon in the notification area opens this window again. To end it, choose Exit in the menu of the icon, or File, Exit in the window.</source>
        <translation>ORVEN nimmt weiter Anrufe an. Sein Symbol im Benachrichtigungsfeld öffnet dieses Fenster wieder. Zum Beenden dient Beenden im Menü des Symbols oder Datei, Beenden im Fenster.</translation>
    </message>
    <message>
        <source>ORVEN goes on answering calls: its window is only minimised, because this desktop has no notification area. To end it, choose File, Exit in the window.</source>
        <translation>ORVEN nimmt weiter Anrufe an: das Fenster ist nur minimiert, denn dieser Desktop hat kein Benachrichtigungsfeld. Zum Beenden dient Datei, Beenden im Fenster.</translation>
    </message>
</context>
<context>
    <name>orven::MessageFolders</name>
    <message>
        <source>The setting MassagesPath names a folder that does not exist (%2): messages are stored in %1</source>
        <translation>Die Einstellung MassagesPath nennt einen Ordner, den es nicht gibt (%2): Nachrichten werden in %1 gespeichert</translation>
    </message>
    <message>
        <source>The setting MassagesPath is missing: messages are stored in %1</source>
        <translation>Die Einstellung MassagesPath fehlt: Nachrichten werden in %1 gespeichert</translation>
    </message>
    <message>
        <source>The setting MassagesPath is not a full path (&quot;%2&quot;): messages are stored in %1</source>
        <translation>Die Einstellung MassagesPath ist kein vollständiger Pfad („%2“): Nachrichten werden in %1 gespeichert</translation>
    </message>
</context>
<context>
    <name>orven::MessageMove</name>
    <message>
        <source>The move of the messages to %1 was interrupted. Messages that are there already stay there and cannot be played any more. To take them along, choose %1 first.

Leave them there, and store the messages in %2 ?</source>
        <translation>Das Verschieben der Nachrichten nach %1 wurde unterbrochen. Nachrichten, die schon dort sind, bleiben dort und lassen sich nicht mehr abspielen. Um sie mitzunehmen, zuerst %1 wählen.

Sie dort lassen und Nachrichten in %2 speichern?</translation>
    </message>
    <message>
        <source>The calls cannot be read</source>
        <translation>Die Anrufe lassen sich nicht lesen</translation>
    </message>
    <message>
        <source>The settings cannot be stored; the system log has the details.</source>
        <translation>Die Einstellungen lassen sich nicht speichern; Näheres im Systemprotokoll.</translation>
    </message>
    <message>
        <source>The messages are in %1

This could not be stored; the system log has the details. It will be stored at the next start if the settings can be written then.</source>
        <translation>Die Nachrichten sind in %1

Das konnte nicht gespeichert werden; Näheres im Systemprotokoll. Es wird beim nächsten Start gespeichert, wenn sich die Einstellungen dann schreiben lassen.</translation>
    </message>
</context>
<context>
    <name>orven::OptionsDialog</name>
    <message>
        <source>Save Messages To</source>
        <translation>Nachrichten speichern in</translation>
    </message>
    <message>
        <source>The options could not be stored. They apply until the program ends; see the system log.</source>
        <translation>Die Einstellungen konnten nicht gespeichert werden. Sie gelten, bis das Programm endet; Näheres im Systemprotokoll.</translation>
    </message>
    <message>
        <source>The program does not start with the desktop: this could not be changed. The system log has the details.</source>
        <translation>Das Programm startet nicht mit dem Desktop: das ließ sich nicht ändern. Näheres im Systemprotokoll.</translation>
    </message>
    <message>
        <source>The program still starts with the desktop: this could not be changed. The system log has the details.</source>
        <translation>Das Programm startet weiterhin mit dem Desktop: das ließ sich nicht ändern. Näheres im Systemprotokoll.</translation>
    </message>
    <message>
        <source>Default output</source>
        <translation>Standardausgabe</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>Device Name:</source>
        <translation>Gerätename:</translation>
    </message>
    <message>
        <source>Max Rate: </source>
        <translation>Höchste Datenrate: </translation>
    </message>
    <message>
        <source>%1 bit/s</source>
        <translation>%1 bit/s</translation>
    </message>
    <message>
        <source>Support CallerID: </source>
        <translation>Rufnummernanzeige: </translation>
    </message>
    <message>
        <source>Support Monitor Digits: </source>
        <translation>Erkennt Tonwahl: </translation>
    </message>
    <message>
        <source>Support Generate Digits: </source>
        <translation>Erzeugt Tonwahl: </translation>
    </message>
    <message>
        <source>Data Mode:</source>
        <translation>Datenmodus:</translation>
    </message>
    <message>
        <source>Interactivevoice:</source>
        <translation>Interaktive Sprache:</translation>
    </message>
    <message>
        <source>Auto Voice:</source>
        <translation>Automatische Sprache:</translation>
    </message>
</context>
<context>
    <name>orven::OwnCall</name>
    <message>
        <source>The caller heard the greeting &quot;%1&quot;.</source>
        <translation>Der Anrufer hat die Ansage „%1“ gehört.</translation>
    </message>
    <message>
        <source>Answered at ring %1.</source>
        <translation>Angenommen beim Klingelzeichen %1.</translation>
    </message>
    <message>
        <source>It was answered at ring %1, not at ring %2: somebody answered by hand.</source>
        <translation>Angenommen beim Klingelzeichen %1, nicht %2: jemand hat von Hand angenommen.</translation>
    </message>
    <message>
        <source>The message could not be stored: see the system log for the reason.</source>
        <translation>Die Nachricht konnte nicht gespeichert werden: der Grund steht im Systemprotokoll.</translation>
    </message>
    <message>
        <source>No message was recorded: see the system log for the reason.</source>
        <translation>Es wurde keine Nachricht aufgenommen: der Grund steht im Systemprotokoll.</translation>
    </message>
    <message>
        <source>The message %1 holds the sentence.</source>
        <translation>Die Nachricht %1 enthält den Satz.</translation>
    </message>
    <message>
        <source>The message %1 does not hold the sentence.</source>
        <translation>Die Nachricht %1 enthält den Satz nicht.</translation>
    </message>
    <message>
        <source>The call is in the list, from %1.</source>
        <translation>Der Anruf steht in der Liste, von %1.</translation>
    </message>
    <message>
        <source>The line is off: switch it on first.</source>
        <translation>Die Leitung ist aus: zuerst einschalten.</translation>
    </message>
    <message>
        <source>The line has a call: try again when it is over.</source>
        <translation>Auf der Leitung ist ein Anruf: nach seinem Ende noch einmal versuchen.</translation>
    </message>
    <message>
        <source>It was cancelled.</source>
        <translation>Abgebrochen.</translation>
    </message>
    <message>
        <source>The caller heard the beep.</source>
        <translation>Der Anrufer hat den Signalton gehört.</translation>
    </message>
    <message>
        <source>The caller said a sentence.</source>
        <translation>Der Anrufer hat einen Satz gesagt.</translation>
    </message>
    <message>
        <source>It took too long.</source>
        <translation>Es hat zu lange gedauert.</translation>
    </message>
    <message>
        <source>Another call came in: try again when it is over.</source>
        <translation>Ein anderer Anruf kam an: nach seinem Ende noch einmal versuchen.</translation>
    </message>
    <message>
        <source>The records cannot be written now; the call is filed later. See the system log for the reason.</source>
        <translation>Die Anrufliste lässt sich gerade nicht schreiben; der Anruf wird später eingetragen. Der Grund steht im Systemprotokoll.</translation>
    </message>
    <message>
        <source>The message cannot be played: choose another sound card in Options.</source>
        <translation>Die Nachricht lässt sich nicht abspielen: in den Einstellungen eine andere Soundkarte wählen.</translation>
    </message>
    <message>
        <source>The message was played.</source>
        <translation>Die Nachricht wurde abgespielt.</translation>
    </message>
    <message>
        <source>The message stopped before its end: if nobody stopped it, choose another sound card in Options.</source>
        <translation>Die Nachricht brach vor ihrem Ende ab: Wenn niemand sie angehalten hat, in den Einstellungen eine andere Soundkarte wählen.</translation>
    </message>
</context>
<context>
    <name>orven::PlayerPanel</name>
    <message>
        <source>Player</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Play the selected message</source>
        <translation>Die gewählte Nachricht abspielen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Stop playing</source>
        <translation>Wiedergabe anhalten</translation>
    </message>
    <message>
        <source>Position in the message</source>
        <translation>Position in der Nachricht</translation>
    </message>
    <message>
        <source>Time played and length of the message</source>
        <translation>Gespielte Zeit und Länge der Nachricht</translation>
    </message>
</context>
<context>
    <name>orven::Probe</name>
    <message>
        <source>The modem at %1 is gone.</source>
        <translation>Das Modem an %1 ist weg.</translation>
    </message>
</context>
<context>
    <name>orven::Program</name>
    <message>
        <source>The settings are missing: the installation&apos;s settings and a new password are used</source>
        <translation>Die Einstellungen fehlen: es gelten die einer neuen Installation und ein neues Passwort</translation>
    </message>
    <message>
        <source>The settings could not be read and are kept as %1: the installation&apos;s settings and a new password are used</source>
        <translation>Die Einstellungen ließen sich nicht lesen und sind als %1 aufbewahrt: es gelten die einer neuen Installation und ein neues Passwort</translation>
    </message>
</context>
<context>
    <name>orven::QuickOptionBar</name>
    <message>
        <source>Quick options</source>
        <translation>Schnelleinstellungen</translation>
    </message>
    <message>
        <source>Record messages</source>
        <translation>Nachrichten aufnehmen</translation>
    </message>
    <message>
        <source>Record a message after the greeting</source>
        <translation>Nach der Ansage eine Nachricht aufnehmen</translation>
    </message>
    <message>
        <source>Greeting:</source>
        <translation>Ansage:</translation>
    </message>
    <message>
        <source>The greeting that callers hear</source>
        <translation>Die Ansage, die Anrufer hören</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Play the greeting</source>
        <translation>Die Ansage abspielen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Stop playing</source>
        <translation>Wiedergabe anhalten</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Make a new greeting</source>
        <translation>Eine neue Ansage erstellen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete the greeting</source>
        <translation>Die Ansage löschen</translation>
    </message>
    <message>
        <source>Answer after</source>
        <translation>Annehmen nach</translation>
    </message>
    <message>
        <source>Number of rings before a call is answered</source>
        <translation>Zahl der Klingelzeichen, bevor ein Anruf angenommen wird</translation>
    </message>
    <message>
        <source>rings</source>
        <translation>Klingelzeichen</translation>
    </message>
</context>
<context>
    <name>orven::RemoteAccess</name>
    <message>
        <source>Monitoring Digits: %1</source>
        <translation>Gewählte Tasten: %1</translation>
    </message>
    <message>
        <source>Administrator Mode</source>
        <translation>Fernabfrage</translation>
    </message>
</context>
<context>
    <name>orven::RunningTest</name>
    <message>
        <source>The test cannot run: no thread can be started.</source>
        <translation>Der Test kann nicht laufen: kein Thread lässt sich starten.</translation>
    </message>
</context>
<context>
    <name>orven::SetupAssistant</name>
    <message>
        <source>Another program uses %1: calls will come in at %2.</source>
        <translation>Ein anderes Programm verwendet %1: Anrufe kommen bei %2 an.</translation>
    </message>
    <message>
        <source>To try it from another telephone at the router, dial %1.</source>
        <translation>Zum Ausprobieren von einem anderen Telefon am Router %1 wählen.</translation>
    </message>
    <message>
        <source>To try it from another telephone, dial the number of the account %1.</source>
        <translation>Zum Ausprobieren von einem anderen Telefon die Nummer des Kontos %1 wählen.</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>The server is missing: its name or address.</source>
        <translation>Der Server fehlt: sein Name oder seine Adresse.</translation>
    </message>
    <message>
        <source>No telephone line is chosen.</source>
        <translation>Es ist keine Telefonleitung gewählt.</translation>
    </message>
    <message>
        <source>Sending a test mail…</source>
        <translation>Testmail wird gesendet …</translation>
    </message>
</context>
<context>
    <name>orven::SmtpTests</name>
    <message>
        <source>Test mail from ORVEN</source>
        <translation>Testmail von ORVEN</translation>
    </message>
    <message>
        <source>%1 has accepted the mail to %2. If it does not arrive within some minutes, look among the unwanted mails.</source>
        <translation>%1 hat die E-Mail an %2 angenommen. Kommt sie nicht in einigen Minuten an, lohnt ein Blick in den Spam-Ordner.</translation>
    </message>
    <message>
        <source>%1 answers.</source>
        <translation>%1 antwortet.</translation>
    </message>
    <message>
        <source>%1 answers and accepts the login.</source>
        <translation>%1 antwortet und nimmt die Anmeldung an.</translation>
    </message>
    <message>
        <source>The mail settings work: calls can be mailed to this address.</source>
        <translation>Die E-Mail-Einstellungen funktionieren: Anrufe können an diese Adresse gesendet werden.</translation>
    </message>
</context>
<context>
    <name>orven::SoundBox</name>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Stop playing</source>
        <translation>Wiedergabe anhalten</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
</context>
<context>
    <name>orven::SpeakerFrame</name>
    <message>
        <source>&amp;Record</source>
        <translation>&amp;Aufnehmen</translation>
    </message>
    <message>
        <source>Record a greeting with the microphone</source>
        <translation>Eine Ansage mit dem Mikrofon aufnehmen</translation>
    </message>
    <message>
        <source>St&amp;op</source>
        <translation>St&amp;opp</translation>
    </message>
    <message>
        <source>End the recording</source>
        <translation>Die Aufnahme beenden</translation>
    </message>
    <message>
        <source>Start &amp;Play</source>
        <translation>An&amp;hören</translation>
    </message>
    <message>
        <source>Listen to the recording</source>
        <translation>Die Aufnahme anhören</translation>
    </message>
    <message>
        <source>Stop Pla&amp;y</source>
        <translation>Anha&amp;lten</translation>
    </message>
    <message>
        <source>Stop listening</source>
        <translation>Die Wiedergabe anhalten</translation>
    </message>
    <message>
        <source>Record with the microphone</source>
        <translation>Mit dem Mikrofon aufnehmen</translation>
    </message>
    <message>
        <source>Listen</source>
        <translation>Anhören</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>Time recorded</source>
        <translation>Aufgenommene Zeit</translation>
    </message>
    <message>
        <source>Level of the microphone</source>
        <translation>Pegel des Mikrofons</translation>
    </message>
    <message>
        <source>Level of the microphone: it should hardly ever turn red</source>
        <translation>Pegel des Mikrofons: er sollte fast nie rot werden</translation>
    </message>
    <message>
        <source>Time played and length of the recording</source>
        <translation>Gespielte Zeit und Länge der Aufnahme</translation>
    </message>
    <message>
        <source>Position in the recording</source>
        <translation>Position in der Aufnahme</translation>
    </message>
</context>
<context>
    <name>orven::SpeechFrame</name>
    <message>
        <source>Spea&amp;k</source>
        <translation>&amp;Sprechen</translation>
    </message>
    <message>
        <source>Listen to the text</source>
        <translation>Den Text anhören</translation>
    </message>
    <message>
        <source>Stop Speakin&amp;g</source>
        <translation>Sprechen &amp;beenden</translation>
    </message>
    <message>
        <source>Stop speaking at once</source>
        <translation>Das Sprechen sofort beenden</translation>
    </message>
    <message>
        <source>&amp;Create Greeting</source>
        <translation>Ansage &amp;erzeugen</translation>
    </message>
    <message>
        <source>Make a greeting from the text with this voice and rate</source>
        <translation>Aus dem Text mit dieser Stimme und diesem Tempo eine Ansage erzeugen</translation>
    </message>
    <message>
        <source>Te&amp;xt:</source>
        <translation>Te&amp;xt:</translation>
    </message>
    <message>
        <source>Text of the greeting</source>
        <translation>Text der Ansage</translation>
    </message>
    <message>
        <source>What callers will hear</source>
        <translation>Was Anrufer hören werden</translation>
    </message>
    <message>
        <source>&amp;Voice:</source>
        <translation>St&amp;imme:</translation>
    </message>
    <message>
        <source>Rat&amp;e:</source>
        <translation>Tem&amp;po:</translation>
    </message>
    <message>
        <source>Slow</source>
        <translation>Langsam</translation>
    </message>
    <message>
        <source>Fast</source>
        <translation>Schnell</translation>
    </message>
    <message>
        <source>Voice</source>
        <translation>Stimme</translation>
    </message>
    <message>
        <source>Type part of a voice&apos;s name to find it</source>
        <translation>Einen Teil vom Namen der Stimme tippen, um sie zu finden</translation>
    </message>
    <message>
        <source>Rate</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>How fast the text is spoken</source>
        <translation>Wie schnell der Text gesprochen wird</translation>
    </message>
</context>
<context>
    <name>orven::TelephonyControl</name>
    <message>
        <source>The line cannot be opened (%1)</source>
        <translation>Die Leitung lässt sich nicht öffnen (%1)</translation>
    </message>
</context>
<context>
    <name>orven::TrayIcon</name>
    <message>
        <source>ORVEN - Calls:%1  New:%2</source>
        <translation>ORVEN – Anrufe: %1  Neu: %2</translation>
    </message>
</context>
<context>
    <name>orven::WaveformWidget</name>
    <message>
        <source>Waveform of the message</source>
        <translation>Wellenform der Nachricht</translation>
    </message>
</context>
<context>
    <name>orven::frmAbout</name>
    <message>
        <source>About ORVEN</source>
        <translation>Über ORVEN</translation>
    </message>
    <message>
        <source>Made with</source>
        <translation>Verwendet</translation>
    </message>
    <message>
        <source>Licence</source>
        <translation>Lizenz</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>ORVEN</source>
        <translation>ORVEN</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>A telephone answering machine: it answers the line, plays a greeting, records the message and reports the call.</source>
        <translation>Ein Anrufbeantworter: er nimmt Anrufe an, spielt eine Ansage, nimmt die Nachricht auf und meldet den Anruf.</translation>
    </message>
    <message>
        <source>Free software under the GNU General Public License, version 3 or later (GPL-3.0-or-later). It comes without any warranty.</source>
        <translation>Freie Software unter der GNU General Public License, Version 3 oder neuer (GPL-3.0-or-later), ohne jede Gewährleistung.</translation>
    </message>
    <message>
        <source>Libraries</source>
        <translation>Bibliotheken</translation>
    </message>
    <message>
        <source>Library</source>
        <translation>Bibliothek</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>For</source>
        <translation>Zweck</translation>
    </message>
</context>
<context>
    <name>orven::frmActions</name>
    <message>
        <source>Actions</source>
        <translation>Aktionen</translation>
    </message>
    <message>
        <source>E-Mail</source>
        <translation>E-Mail</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>Programm</translation>
    </message>
    <message>
        <source>Parameters</source>
        <translation>Parameter</translation>
    </message>
    <message>
        <source>The details of a call that the program can get</source>
        <translation>Die Angaben zum Anruf, die das Programm bekommen kann</translation>
    </message>
    <message>
        <source>Test</source>
        <translation>Testen</translation>
    </message>
    <message>
        <source>Start the program now, with made-up call details</source>
        <translation>Das Programm jetzt mit erfundenen Angaben starten</translation>
    </message>
    <message>
        <source>Started.</source>
        <translation>Gestartet.</translation>
    </message>
    <message>
        <source>Send a test mail</source>
        <translation>Testmail senden</translation>
    </message>
    <message>
        <source>Send a mail now with what is in the fields, stored or not</source>
        <translation>Jetzt eine E-Mail mit den Angaben in den Feldern senden, gespeichert oder nicht</translation>
    </message>
    <message>
        <source>Sending a test mail…</source>
        <translation>Testmail wird gesendet …</translation>
    </message>
</context>
<context>
    <name>orven::frmCheckUp</name>
    <message>
        <source>What was checked</source>
        <translation>Was geprüft wurde</translation>
    </message>
    <message>
        <source>Call &amp;me now</source>
        <translation>Jetzt &amp;anrufen</translation>
    </message>
    <message>
        <source>ORVEN calls its own line, says a sentence and plays the message</source>
        <translation>ORVEN ruft die eigene Leitung an, sagt einen Satz und spielt die Nachricht ab</translation>
    </message>
    <message>
        <source>Steps of the call</source>
        <translation>Schritte des Anrufs</translation>
    </message>
    <message>
        <source>Check &amp;again</source>
        <translation>&amp;Noch einmal prüfen</translation>
    </message>
    <message>
        <source>Check-up</source>
        <translation>Überprüfung</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>being checked…</source>
        <translation>wird geprüft …</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>The machine is being checked…</source>
        <translation>Der Anrufbeantworter wird geprüft …</translation>
    </message>
    <message>
        <source>Something needs your attention.</source>
        <translation>Etwas muss in Ordnung gebracht werden.</translation>
    </message>
    <message>
        <source>Everything that was checked is in order.</source>
        <translation>Alles, was geprüft wurde, ist in Ordnung.</translation>
    </message>
    <message>
        <source>&amp;Hang up</source>
        <translation>Auf&amp;legen</translation>
    </message>
    <message>
        <source>A test call proves the whole chain. It stays in the list until you delete it.</source>
        <translation>Ein Testanruf prüft die ganze Kette. Er bleibt in der Liste, bis er gelöscht wird.</translation>
    </message>
    <message>
        <source>ORVEN is calling itself…</source>
        <translation>ORVEN ruft sich selbst an …</translation>
    </message>
    <message>
        <source>The test call went through from the first ring to the played message.</source>
        <translation>Der Testanruf kam durch, vom ersten Klingelzeichen bis zur abgespielten Nachricht.</translation>
    </message>
    <message>
        <source>The test call has found a fault.</source>
        <translation>Der Testanruf hat einen Fehler gefunden.</translation>
    </message>
</context>
<context>
    <name>orven::frmEvents</name>
    <message>
        <source>Events</source>
        <translation>Ereignisse</translation>
    </message>
    <message>
        <source>In Coming Call</source>
        <translation>Ankommender Anruf</translation>
    </message>
    <message>
        <source>Set events when accepting call</source>
        <translation>Ereignisse bei einem ankommenden Anruf</translation>
    </message>
    <message>
        <source>Disconnect Call</source>
        <translation>Anrufende</translation>
    </message>
    <message>
        <source>Set events when disconnecting a call</source>
        <translation>Ereignisse am Ende eines Anrufs</translation>
    </message>
    <message>
        <source>Test</source>
        <translation>Testen</translation>
    </message>
    <message>
        <source>Show the caller view with these options</source>
        <translation>Das Anruferfenster mit diesen Einstellungen zeigen</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Speed:</source>
        <translation>Tempo:</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>Klang</translation>
    </message>
    <message>
        <source>Sounds</source>
        <translation>Klänge</translation>
    </message>
    <message>
        <source>Play the sound</source>
        <translation>Den Klang abspielen</translation>
    </message>
    <message>
        <source>Add a sound</source>
        <translation>Einen Klang hinzufügen</translation>
    </message>
    <message>
        <source>Delete the sound</source>
        <translation>Den Klang löschen</translation>
    </message>
</context>
<context>
    <name>orven::frmGreetC</name>
    <message>
        <source>Greeting Creator</source>
        <translation>Ansage erstellen</translation>
    </message>
    <message>
        <source>Save the greeting; callers will hear it from now on</source>
        <translation>Die Ansage speichern; Anrufer hören sie ab jetzt</translation>
    </message>
    <message>
        <source>&amp;Speaker</source>
        <translation>&amp;Mikrofon</translation>
    </message>
    <message>
        <source>&amp;Text To Speech</source>
        <translation>&amp;Text vorlesen</translation>
    </message>
    <message>
        <source>Waveform of the recording</source>
        <translation>Wellenform der Aufnahme</translation>
    </message>
    <message>
        <source>Greeting &amp;Name</source>
        <translation>&amp;Name der Ansage</translation>
    </message>
</context>
<context>
    <name>orven::frmLineEdit</name>
    <message>
        <source>Telephone Line</source>
        <translation>Telefonleitung</translation>
    </message>
    <message>
        <source>New Telephone Line</source>
        <translation>Neue Telefonleitung</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>The line&apos;s name in this program</source>
        <translation>Der Name der Leitung in diesem Programm</translation>
    </message>
    <message>
        <source>&amp;Kind:</source>
        <translation>Ar&amp;t:</translation>
    </message>
    <message>
        <source>SIP (Internet telephony)</source>
        <translation>SIP (Internettelefonie)</translation>
    </message>
    <message>
        <source>Modem</source>
        <translation>Modem</translation>
    </message>
    <message>
        <source>Simulation</source>
        <translation>Simulation</translation>
    </message>
    <message>
        <source>&amp;Server:</source>
        <translation>&amp;Server:</translation>
    </message>
    <message>
        <source>The account&apos;s server: its name or address, perhaps with &quot;:&quot; and a port; empty for calls that come directly to this computer</source>
        <translation>Der Server des Kontos: Name oder Adresse, wenn nötig mit „:“ und Port; leer für Anrufe, die direkt zu diesem Computer kommen</translation>
    </message>
    <message>
        <source>sip.example.org, or the home router</source>
        <translation>sip.example.org oder der Router</translation>
    </message>
    <message>
        <source>&amp;User:</source>
        <translation>&amp;Benutzer:</translation>
    </message>
    <message>
        <source>The account&apos;s name or telephone number</source>
        <translation>Name oder Rufnummer des Kontos</translation>
    </message>
    <message>
        <source>&amp;Login name:</source>
        <translation>An&amp;meldename:</translation>
    </message>
    <message>
        <source>Only if the server expects a login name other than the user</source>
        <translation>Nur wenn der Server einen anderen Anmeldenamen als den Benutzer erwartet</translation>
    </message>
    <message>
        <source>the same as the user</source>
        <translation>wie der Benutzer</translation>
    </message>
    <message>
        <source>T&amp;ransport:</source>
        <translation>T&amp;ransport:</translation>
    </message>
    <message>
        <source>How the server is reached; the provider says which ones it supports</source>
        <translation>Wie der Server erreicht wird; der Anbieter nennt, was er unterstützt</translation>
    </message>
    <message>
        <source>Outbound pro&amp;xy:</source>
        <translation>Ausgehender Pro&amp;xy:</translation>
    </message>
    <message>
        <source>A server, perhaps with &quot;:&quot; and a port, to which everything is sent instead of the account&apos;s server</source>
        <translation>Ein Server, wenn nötig mit „:“ und Port, an den statt an den Server des Kontos alles gesendet wird</translation>
    </message>
    <message>
        <source>only if the provider names one</source>
        <translation>nur wenn der Anbieter einen nennt</translation>
    </message>
    <message>
        <source>&amp;Address for calls:</source>
        <translation>&amp;Adresse für Anrufe:</translation>
    </message>
    <message>
        <source>Where this computer waits for calls: a host and a port, such as 192.168.1.5:5060, [2001:db8::5]:5060 or pc.example.org:5060</source>
        <translation>Wo dieser Computer auf Anrufe wartet: Rechner und Port, etwa 192.168.1.5:5060, [2001:db8::5]:5060 oder pc.example.org:5060</translation>
    </message>
    <message>
        <source>0.0.0.0:5060 is every network, *:5060 with IPv6, too, and 127.0.0.1:5060 this computer only. Or one of its addresses or names.</source>
        <translation>0.0.0.0:5060 ist jedes Netz, *:5060 auch mit IPv6, 127.0.0.1:5060 nur dieser Computer. Oder eine seiner Adressen oder einer seiner Namen.</translation>
    </message>
    <message>
        <source> s</source>
        <translation> s</translation>
    </message>
    <message>
        <source>The time from ring to ring; the answering machine counts the rings</source>
        <translation>Die Zeit von Klingelzeichen zu Klingelzeichen; der Anrufbeantworter zählt sie</translation>
    </message>
    <message>
        <source>Time &amp;between rings:</source>
        <translation>&amp;Klingelabstand:</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>&amp;Passwort:</translation>
    </message>
    <message>
        <source>S&amp;how</source>
        <translation>An&amp;zeigen</translation>
    </message>
    <message>
        <source>Show the password</source>
        <translation>Das Passwort anzeigen</translation>
    </message>
    <message>
        <source>P&amp;ort:</source>
        <translation>P&amp;ort:</translation>
    </message>
    <message>
        <source>The serial port of the modem</source>
        <translation>Die serielle Schnittstelle des Modems</translation>
    </message>
    <message>
        <source>&amp;Find</source>
        <translation>S&amp;uchen</translation>
    </message>
    <message>
        <source>Look for ports again, after a modem has been plugged in</source>
        <translation>Noch einmal nach Schnittstellen suchen, nachdem ein Modem angeschlossen wurde</translation>
    </message>
    <message>
        <source>auto: the first voice modem that is found, on any port.</source>
        <translation>auto: das erste Sprachmodem, das gefunden wird, an jeder Schnittstelle.</translation>
    </message>
    <message>
        <source>Scr&amp;ipt:</source>
        <translation>Skr&amp;ipt:</translation>
    </message>
    <message>
        <source>A file that describes the calls to simulate</source>
        <translation>Eine Datei, die die simulierten Anrufe beschreibt</translation>
    </message>
    <message>
        <source>Automatic (as the server&apos;s name says, else UDP)</source>
        <translation>Automatisch (nach dem Servernamen, sonst UDP)</translation>
    </message>
    <message>
        <source>UDP</source>
        <translation>UDP</translation>
    </message>
    <message>
        <source>TCP</source>
        <translation>TCP</translation>
    </message>
    <message>
        <source>TLS with SRTP (encrypted)</source>
        <translation>TLS mit SRTP (verschlüsselt)</translation>
    </message>
    <message>
        <source>TLS (sound not encrypted)</source>
        <translation>TLS (Ton unverschlüsselt)</translation>
    </message>
    <message>
        <source>&amp;More</source>
        <translation>Me&amp;hr</translation>
    </message>
    <message>
        <source>What only some providers and networks need</source>
        <translation>Was nur manche Anbieter und Netze brauchen</translation>
    </message>
    <message>
        <source>Trusted &amp;certificates:</source>
        <translation>Vertraute &amp;Zertifikate:</translation>
    </message>
    <message>
        <source>A PEM file of the certificates that the server may show with TLS; it is looked for in ORVEN&apos;s folder</source>
        <translation>Eine PEM-Datei mit den Zertifikaten, die der Server bei TLS zeigen darf; sie wird im Ordner von ORVEN gesucht</translation>
    </message>
    <message>
        <source>those that this computer trusts</source>
        <translation>die, denen dieser Computer vertraut</translation>
    </message>
</context>
<context>
    <name>orven::frmLineTest</name>
    <message>
        <source>Register at the server, or query the modem, and report any problem</source>
        <translation>Am Server anmelden oder das Modem abfragen und Fehler melden</translation>
    </message>
    <message>
        <source>S&amp;top</source>
        <translation>Abbr&amp;echen</translation>
    </message>
    <message>
        <source>&amp;Test</source>
        <translation>T&amp;esten</translation>
    </message>
    <message>
        <source>Stopped.</source>
        <translation>Abgebrochen.</translation>
    </message>
    <message>
        <source>Testing…</source>
        <translation>Wird getestet …</translation>
    </message>
</context>
<context>
    <name>orven::frmLines</name>
    <message>
        <source>Telephone Lines</source>
        <translation>Telefonleitungen</translation>
    </message>
    <message>
        <source>Telephone lines</source>
        <translation>Telefonleitungen</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Account or address</source>
        <translation>Konto oder Adresse</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>&amp;Add…</source>
        <translation>&amp;Hinzufügen…</translation>
    </message>
    <message>
        <source>Add a SIP account or a modem</source>
        <translation>Ein SIP-Konto oder ein Modem hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Edit…</source>
        <translation>&amp;Bearbeiten…</translation>
    </message>
    <message>
        <source>Change the selected line</source>
        <translation>Die gewählte Leitung ändern</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>Remove the selected line</source>
        <translation>Die gewählte Leitung entfernen</translation>
    </message>
    <message>
        <source>Store the lines and use them</source>
        <translation>Die Leitungen speichern und verwenden</translation>
    </message>
    <message>
        <source>Leave the lines as they were</source>
        <translation>Die Leitungen lassen, wie sie waren</translation>
    </message>
</context>
<context>
    <name>orven::frmLog</name>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Logs to show</source>
        <translation>Angezeigte Protokolle</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>Calls</source>
        <translation>Anrufe</translation>
    </message>
    <message>
        <source>System</source>
        <translation>System</translation>
    </message>
    <message>
        <source>Log files</source>
        <translation>Protokolldateien</translation>
    </message>
    <message>
        <source>Lines of the log</source>
        <translation>Zeilen des Protokolls</translation>
    </message>
    <message>
        <source>Details:</source>
        <translation>Einzelheiten:</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete the selected log</source>
        <translation>Das gewählte Protokoll löschen</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Speichern unter</translation>
    </message>
    <message>
        <source>Save a copy of the selected log</source>
        <translation>Eine Kopie des gewählten Protokolls speichern</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>Eigenschaften</translation>
    </message>
    <message>
        <source>Which logs are written and how long they are kept</source>
        <translation>Welche Protokolle geschrieben und wie lange sie aufbewahrt werden</translation>
    </message>
</context>
<context>
    <name>orven::frmLogProp</name>
    <message>
        <source>Log Properties</source>
        <translation>Eigenschaften der Protokolle</translation>
    </message>
</context>
<context>
    <name>orven::frmMSG</name>
    <message>
        <source>ORVEN</source>
        <translation>ORVEN</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Cllaer Name : </source>
        <translation>Anrufer: </translation>
    </message>
    <message>
        <source>Cllaer Number :</source>
        <translation>Rufnummer:</translation>
    </message>
    <message>
        <source>Time : </source>
        <translation>Zeit: </translation>
    </message>
    <message>
        <source>Date : </source>
        <translation>Datum: </translation>
    </message>
    <message>
        <source>Answer Now</source>
        <translation>Annehmen</translation>
    </message>
    <message>
        <source>Drop Call</source>
        <translation>Auflegen</translation>
    </message>
    <message>
        <source>Do Nothing</source>
        <translation>Nichts tun</translation>
    </message>
</context>
<context>
    <name>orven::frmMain</name>
    <message>
        <source>Calls and settings</source>
        <translation>Anrufe und Einstellungen</translation>
    </message>
    <message>
        <source>ORVEN</source>
        <translation>ORVEN</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>Modem Status</source>
        <translation>Zustand der Leitung</translation>
    </message>
    <message>
        <source>Answering</source>
        <translation>Rufannahme</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Voriger</translation>
    </message>
    <message>
        <source>Back  Message</source>
        <translation>Vorige Nachricht</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Nächster</translation>
    </message>
    <message>
        <source>Next Message</source>
        <translation>Nächste Nachricht</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Save Message As</source>
        <translation>Nachricht speichern unter</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete Message</source>
        <translation>Nachricht löschen</translation>
    </message>
    <message>
        <source>   Clear   </source>
        <translation>   Leeren   </translation>
    </message>
    <message>
        <source>Clear Calls List</source>
        <translation>Anrufliste leeren</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>Ereignisse</translation>
    </message>
    <message>
        <source>Set Events</source>
        <translation>Ereignisse einstellen</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Aktionen</translation>
    </message>
    <message>
        <source>Set Actions</source>
        <translation>Aktionen einstellen</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>On</source>
        <translation>Ein</translation>
    </message>
</context>
<context>
    <name>orven::frmOptions</name>
    <message>
        <source>Options</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>Geräte</translation>
    </message>
    <message>
        <source>Answer Mode</source>
        <translation>Rufannahme</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>Erweitert</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>No device is chosen.</source>
        <translation>Es ist keine Leitung gewählt.</translation>
    </message>
    <message>
        <source>There is no device of this name now.</source>
        <translation>Zurzeit gibt es keine Leitung mit diesem Namen.</translation>
    </message>
    <message>
        <source>While a caller is greeted or speaks, the level is shown here.</source>
        <translation>Während ein Anrufer die Ansage hört oder spricht, ist hier der Pegel zu sehen.</translation>
    </message>
    <message>
        <source>The caller&apos;s level now: %1 % (heard)</source>
        <translation>Pegel des Anrufers: %1 % (zu hören)</translation>
    </message>
    <message>
        <source>The caller&apos;s level now: %1 % (silent)</source>
        <translation>Pegel des Anrufers: %1 % (still)</translation>
    </message>
    <message>
        <source>Moving the messages: %1 of %2</source>
        <translation>Nachrichten werden verschoben: %1 von %2</translation>
    </message>
    <message>
        <source>Start ORVEN when I log in</source>
        <translation>ORVEN beim Anmelden starten</translation>
    </message>
    <message>
        <source>It then answers from the notification area, without its window</source>
        <translation>Es nimmt dann aus dem Benachrichtigungsfeld an, ohne sein Fenster</translation>
    </message>
    <message>
        <source>Save Messages To</source>
        <translation>Nachrichten speichern in</translation>
    </message>
    <message>
        <source>Folder of the messages</source>
        <translation>Ordner der Nachrichten</translation>
    </message>
    <message>
        <source>&amp;Browse…</source>
        <translation>&amp;Durchsuchen…</translation>
    </message>
    <message>
        <source>Choose another folder. The messages are moved there at once</source>
        <translation>Einen anderen Ordner wählen. Die Nachrichten werden sofort dorthin verschoben</translation>
    </message>
    <message>
        <source>&amp;Lines…</source>
        <translation>&amp;Leitungen…</translation>
    </message>
    <message>
        <source>Add, change, test and remove telephone lines</source>
        <translation>Telefonleitungen hinzufügen, ändern, testen und entfernen</translation>
    </message>
    <message>
        <source>&amp;Modem device:</source>
        <translation>Tele&amp;fonleitung:</translation>
    </message>
    <message>
        <source>Tapi Capability: </source>
        <translation>TAPI-Fähigkeiten: </translation>
    </message>
    <message>
        <source>Silence</source>
        <translation>Stille</translation>
    </message>
    <message>
        <source>Sil&amp;ence is up to:</source>
        <translation>&amp;Stille bis Pegel:</translation>
    </message>
    <message>
        <source>Remote access</source>
        <translation>Fernabfrage</translation>
    </message>
    <message>
        <source>After OK, &quot;Use it now&quot; in the status bar changes to it.</source>
        <translation>Nach OK wechselt „Jetzt verwenden“ in der Statusleiste zu ihr.</translation>
    </message>
</context>
<context>
    <name>orven::frmOptionsGreetings</name>
    <message>
        <source>Greeting</source>
        <translation>Ansage</translation>
    </message>
    <message>
        <source>Greetings</source>
        <translation>Ansagen</translation>
    </message>
    <message>
        <source>Play the greeting</source>
        <translation>Die Ansage abspielen</translation>
    </message>
    <message>
        <source>Make a greeting</source>
        <translation>Eine Ansage erstellen</translation>
    </message>
    <message>
        <source>Delete the greeting</source>
        <translation>Die Ansage löschen</translation>
    </message>
    <message>
        <source>&amp;Greeting:</source>
        <translation>&amp;Ansage:</translation>
    </message>
</context>
<context>
    <name>orven::frmSetup</name>
    <message>
        <source>Set-up Assistant</source>
        <translation>Einrichtungsassistent</translation>
    </message>
    <message>
        <source>Use it any&amp;way</source>
        <translation>&amp;Trotzdem verwenden</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>The page before this one</source>
        <translation>Die Seite davor</translation>
    </message>
    <message>
        <source>S&amp;kip</source>
        <translation>Über&amp;springen</translation>
    </message>
    <message>
        <source>Leave this page as it is</source>
        <translation>Diese Seite lassen, wie sie ist</translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation>&amp;Weiter</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>Tools, Set-up Assistant opens this window again</source>
        <translation>Extras, Einrichtungsassistent öffnet dieses Fenster wieder</translation>
    </message>
    <message>
        <source>1 of 4: Your telephone</source>
        <translation>1 von 4: Das Telefon</translation>
    </message>
    <message>
        <source>2 of 4: Your greeting</source>
        <translation>2 von 4: Die Ansage</translation>
    </message>
    <message>
        <source>3 of 4: When you are away</source>
        <translation>3 von 4: Unterwegs</translation>
    </message>
    <message>
        <source>4 of 4: Ready</source>
        <translation>4 von 4: Bereit</translation>
    </message>
    <message>
        <source>Testing…</source>
        <translation>Wird getestet …</translation>
    </message>
    <message>
        <source>Store the line; ORVEN keeps trying to open it</source>
        <translation>Die Leitung speichern; ORVEN versucht weiter, sie zu öffnen</translation>
    </message>
</context>
<context>
    <name>orven::frmSetupAway</name>
    <message>
        <source>To hear your messages from any telephone, call this machine, key the password while the greeting plays, then the star key.</source>
        <translation>Um Nachrichten von jedem Telefon abzuhören: hier anrufen, während der Ansage das Passwort wählen, danach die Sterntaste.</translation>
    </message>
    <message>
        <source>While it sleeps, nobody answers.</source>
        <translation>Im Ruhezustand nimmt niemand ab.</translation>
    </message>
    <message>
        <source>Send a test mail</source>
        <translation>Testmail senden</translation>
    </message>
    <message>
        <source>Send a mail now with what is in the fields, stored or not</source>
        <translation>Jetzt eine E-Mail mit den Angaben in den Feldern senden, gespeichert oder nicht</translation>
    </message>
</context>
<context>
    <name>orven::frmSetupGreeting</name>
    <message>
        <source>&amp;Hear it</source>
        <translation>An&amp;hören</translation>
    </message>
    <message>
        <source>Play it on the sound card</source>
        <translation>Auf der Soundkarte abspielen</translation>
    </message>
    <message>
        <source>&amp;Type a greeting…</source>
        <translation>Ansage &amp;tippen…</translation>
    </message>
    <message>
        <source>A voice of this computer speaks it</source>
        <translation>Eine Stimme dieses Computers spricht sie</translation>
    </message>
    <message>
        <source>Sp&amp;eak a greeting…</source>
        <translation>Ansage auf&amp;sprechen…</translation>
    </message>
    <message>
        <source>Record it with the microphone</source>
        <translation>Mit dem Mikrofon aufnehmen</translation>
    </message>
    <message>
        <source>Callers hear a greeting and a beep, then leave their message.</source>
        <translation>Anrufer hören eine Ansage und einen Signalton und hinterlassen dann ihre Nachricht.</translation>
    </message>
    <message>
        <source>Make a greeting of your own, or keep this one.</source>
        <translation>Eine eigene Ansage erstellen oder diese behalten.</translation>
    </message>
    <message>
        <source>Callers hear the greeting &quot;%1&quot;.</source>
        <translation>Anrufer hören die Ansage „%1“.</translation>
    </message>
</context>
<context>
    <name>orven::frmSetupReady</name>
    <message>
        <source>Call &amp;me now</source>
        <translation>Jetzt &amp;anrufen</translation>
    </message>
    <message>
        <source>ORVEN calls its own line, says a sentence and plays the message</source>
        <translation>ORVEN ruft die eigene Leitung an, sagt einen Satz und spielt die Nachricht ab</translation>
    </message>
    <message>
        <source>Steps of the call</source>
        <translation>Schritte des Anrufs</translation>
    </message>
</context>
<context>
    <name>orven::frmSetupTelephone</name>
    <message>
        <source>What takes the calls that this machine answers?</source>
        <translation>Woher kommen die Anrufe für diesen Anrufbeantworter?</translation>
    </message>
    <message>
        <source>A home &amp;router with a telephone line</source>
        <translation>Ein &amp;Router mit Telefonanschluss</translation>
    </message>
    <message>
        <source>A SIP &amp;account of a telephone provider or an office</source>
        <translation>Ein SIP-&amp;Konto eines Anbieters oder Büros</translation>
    </message>
    <message>
        <source>A &amp;voice modem on a telephone socket</source>
        <translation>Ein Sprach&amp;modem an einer Telefondose</translation>
    </message>
    <message>
        <source>&amp;Just try it: programs on this computer</source>
        <translation>Nur aus&amp;probieren: Programme auf diesem Computer</translation>
    </message>
    <message>
        <source>&amp;More…</source>
        <translation>M&amp;ehr…</translation>
    </message>
    <message>
        <source>All fields of the line: transport, login name, address for calls</source>
        <translation>Alle Felder der Leitung: Transport, Anmeldename, Adresse für Anrufe</translation>
    </message>
    <message>
        <source>&amp;Server:</source>
        <translation>&amp;Server:</translation>
    </message>
    <message>
        <source>N&amp;umber or user name:</source>
        <translation>N&amp;ummer oder Benutzername:</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>&amp;Passwort:</translation>
    </message>
    <message>
        <source>Add a telephone for this computer in the router&apos;s own pages, and type its name and password here.</source>
        <translation>Auf den Seiten des Routers ein Telefon für diesen Computer anlegen und dessen Namen und Passwort hier eintragen.</translation>
    </message>
    <message>
        <source>The provider&apos;s letter or web page names these three.</source>
        <translation>Diese drei Angaben stehen im Brief oder auf der Webseite des Anbieters.</translation>
    </message>
    <message>
        <source>Plug the modem into the computer and the telephone socket. ORVEN finds its port by itself.</source>
        <translation>Das Modem mit Computer und Telefondose verbinden. ORVEN findet seinen Port von selbst.</translation>
    </message>
    <message>
        <source>Nothing is needed: a softphone on this computer can call ORVEN. Set up your line later.</source>
        <translation>Es ist nichts nötig: ein Softphone auf diesem Computer kann ORVEN anrufen. Die Leitung lässt sich später einrichten.</translation>
    </message>
</context>
<context>
    <name>std</name>
    <message>
        <source>Parameters:<byte value="xd"/>
Caller Name=&lt;NAME&gt;<byte value="xd"/>
Caller Number=&lt;NUMBER&gt;<byte value="xd"/>
Date=&lt;DATE&gt;<byte value="xd"/>
Time=&lt;TIME&gt;<byte value="xd"/>
Message Path=&lt;MESSAGE_PATH&gt;<byte value="xd"/>
<byte value="xd"/>
For more information look at the help</source>
        <translation>Parameter:<byte value="xd"/>
Name des Anrufers=&lt;NAME&gt;<byte value="xd"/>
Rufnummer=&lt;NUMBER&gt;<byte value="xd"/>
Datum=&lt;DATE&gt;<byte value="xd"/>
Zeit=&lt;TIME&gt;<byte value="xd"/>
Pfad der Nachricht=&lt;MESSAGE_PATH&gt;<byte value="xd"/>
<byte value="xd"/>
Mehr dazu in der Hilfe</translation>
    </message>
    <message>
        <source>%1 line</source>
        <translation>%1 Zeile</translation>
    </message>
    <message>
        <source>%1 lines</source>
        <translation>%1 Zeilen</translation>
    </message>
    <message>
        <source>The messages cannot be moved to %1

%2

Nothing was changed.</source>
        <translation>Die Nachrichten können nicht nach %1 verschoben werden

%2

Es wurde nichts geändert.</translation>
    </message>
    <message>
        <source>an address or a name and a port, like 192.168.1.5:5060, [::1]:5060, pc.example.org:5060 or *:5060</source>
        <translation>eine Adresse oder ein Name mit Port, etwa 192.168.1.5:5060, [::1]:5060, pc.example.org:5060 oder *:5060</translation>
    </message>
    <message>
        <source>The address for calls</source>
        <translation>Die Adresse für Anrufe</translation>
    </message>
    <message>
        <source>a user name</source>
        <translation>ein Benutzername</translation>
    </message>
    <message>
        <source>The login name</source>
        <translation>Der Anmeldename</translation>
    </message>
    <message>
        <source>a password</source>
        <translation>ein Passwort</translation>
    </message>
    <message>
        <source>The password</source>
        <translation>Das Passwort</translation>
    </message>
    <message>
        <source>a server&apos;s name or address, perhaps with &quot;:&quot; and a port</source>
        <translation>Name oder Adresse eines Servers, wenn nötig mit „:“ und Port</translation>
    </message>
    <message>
        <source>The outbound proxy</source>
        <translation>Der ausgehende Proxy</translation>
    </message>
    <message>
        <source>udp, tcp, tls or auto</source>
        <translation>udp, tcp, tls oder auto</translation>
    </message>
    <message>
        <source>The transport</source>
        <translation>Der Transport</translation>
    </message>
    <message>
        <source>yes or no</source>
        <translation>yes oder no</translation>
    </message>
    <message>
        <source>The encryption of the sound</source>
        <translation>Die Verschlüsselung des Tons</translation>
    </message>
    <message>
        <source>the path of a PEM file with certificates</source>
        <translation>der Pfad einer PEM-Datei mit Zertifikaten</translation>
    </message>
    <message>
        <source>The trusted certificates&apos; path</source>
        <translation>Der Pfad der vertrauten Zertifikate</translation>
    </message>
    <message>
        <source>the serial device of the modem, for example /dev/ttyACM0, or auto</source>
        <translation>das serielle Gerät des Modems, etwa /dev/ttyACM0, oder auto</translation>
    </message>
    <message>
        <source>The port</source>
        <translation>Der Port</translation>
    </message>
    <message>
        <source>the path of a script</source>
        <translation>der Pfad eines Skripts</translation>
    </message>
    <message>
        <source>The script</source>
        <translation>Das Skript</translation>
    </message>
    <message>
        <source>Machine</source>
        <translation>Anrufbeantworter</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Leitung</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>Registration</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <source>Greeting</source>
        <translation>Ansage</translation>
    </message>
    <message>
        <source>Beep</source>
        <translation>Signalton</translation>
    </message>
    <message>
        <source>Room</source>
        <translation>Platz</translation>
    </message>
    <message>
        <source>Records</source>
        <translation>Anrufliste</translation>
    </message>
    <message>
        <source>Sound card</source>
        <translation>Soundkarte</translation>
    </message>
    <message>
        <source>Mail</source>
        <translation>E-Mail</translation>
    </message>
    <message>
        <source>Clock</source>
        <translation>Uhr</translation>
    </message>
    <message>
        <source>The line rings and is answered</source>
        <translation>Die Leitung klingelt und wird angenommen</translation>
    </message>
    <message>
        <source>The caller hears the greeting</source>
        <translation>Der Anrufer hört die Ansage</translation>
    </message>
    <message>
        <source>The caller hears the beep</source>
        <translation>Der Anrufer hört den Signalton</translation>
    </message>
    <message>
        <source>The caller says a sentence</source>
        <translation>Der Anrufer sagt einen Satz</translation>
    </message>
    <message>
        <source>The sentence is recorded</source>
        <translation>Der Satz wird aufgenommen</translation>
    </message>
    <message>
        <source>The call is in the list</source>
        <translation>Der Anruf steht in der Liste</translation>
    </message>
    <message>
        <source>The message is played</source>
        <translation>Die Nachricht wird abgespielt</translation>
    </message>
    <message>
        <source>Sound card %1 (not connected)</source>
        <translation>Soundkarte %1 (nicht angeschlossen)</translation>
    </message>
    <message>
        <source>There is no telephony device with this index.</source>
        <translation>Es gibt kein Telefoniegerät mit dieser Nummer.</translation>
    </message>
    <message>
        <source>The line is not open.</source>
        <translation>Die Leitung ist nicht offen.</translation>
    </message>
    <message>
        <source>The line is in use by another program.</source>
        <translation>Ein anderes Programm verwendet die Leitung.</translation>
    </message>
    <message>
        <source>There is no call on the line.</source>
        <translation>Auf der Leitung ist kein Anruf.</translation>
    </message>
    <message>
        <source>The call is being answered already.</source>
        <translation>Der Anruf wird schon angenommen.</translation>
    </message>
    <message>
        <source>The telephony device failed.</source>
        <translation>Das Telefoniegerät ist ausgefallen.</translation>
    </message>
    <message>
        <source>There are no telephony devices.</source>
        <translation>Es gibt keine Telefoniegeräte.</translation>
    </message>
</context>
</TS>
