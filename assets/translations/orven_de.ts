<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
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
    <name>frmLineEdit</name>
    <message>
        <source>Automatic (as the server&apos;s name says, else UDP)</source>
        <translation>Automatisch (wie beim Servernamen hinterlegt, sonst UDP)</translation>
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
        <translation>Fernabfrage: Nachrichten von einem anderen Telefon hören</translation>
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
        <source>it cannot be read</source>
        <translation>Lesen nicht möglich</translation>
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
    <message>
        <source>No calls yet.</source>
        <translation>Noch keine Anrufe.</translation>
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
        <translation>Nummer</translation>
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
        <translation>Leitung verbunden</translation>
    </message>
    <message>
        <source>Line Disconnected</source>
        <translation>Leitung getrennt</translation>
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
</context>
<context>
    <name>orven::frmLineTest</name>
    <message>
        <source>Register at the server, or query the modem, and report any problem</source>
        <translation>Am Server anmelden oder das Modem abfragen und Fehler melden</translation>
    </message>
    <message>
        <source>Result of the test</source>
        <translation>Ergebnis des Tests</translation>
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
        <source>It is used once the line has been turned off and on again.</source>
        <translation>Sie wird verwendet, sobald die Leitung aus- und wieder eingeschaltet wurde.</translation>
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
        <source>Show the password</source>
        <translation>Das Passwort anzeigen</translation>
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
</context>
</TS>
