<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>nimbrel</name>
    <message>
        <source>Couldn&apos;t load the file %@.nib!

This can happen if you move Pellamere after running it.</source>
        <translation>Die Datei %@.nib konnte nicht geladen werden!

Das kann geschehen, wenn Pellamere nach dem Start verschoben wurde.</translation>
    </message>
    <message>
        <source>Missing Resource</source>
        <translation>Fehlende Ressource</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>less than a second</source>
        <translation>weniger als eine Sekunde</translation>
    </message>
    <message>
        <source>minutes</source>
        <translation>Minuten</translation>
    </message>
    <message>
        <source>hours</source>
        <translation>Stunden</translation>
    </message>
    <message>
        <source>days</source>
        <translation>Tage</translation>
    </message>
    <message>
        <source>months</source>
        <translation>Monate</translation>
    </message>
    <message>
        <source>years</source>
        <translation>Jahre</translation>
    </message>
    <message>
        <source>centuries</source>
        <translation>Jahrhunderte</translation>
    </message>
    <message>
        <source>Very Weak</source>
        <translation>Sehr schwach</translation>
    </message>
    <message>
        <source>Weak</source>
        <translation>Schwach</translation>
    </message>
    <message>
        <source>Good</source>
        <translation>Gut</translation>
    </message>
    <message>
        <source>Strong</source>
        <translation>Stark</translation>
    </message>
    <message>
        <source>Very Strong</source>
        <translation>Sehr stark</translation>
    </message>
    <message>
        <source>Step %@ of %@: %@</source>
        <translation>Schritt %@ von %@: %@</translation>
    </message>
    <message>
        <source>Go Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>%@ failed to setup with error: %d. Please contact support.</source>
        <translation>%@ konnte nicht eingerichtet werden, Fehler: %d. Bitte wenden Sie sich an den Support.</translation>
    </message>
    <message>
        <source>Nimbrel Assistant</source>
        <translation>Nimbrel-Assistent</translation>
    </message>
    <message>
        <source>If the folder is being synchronized right now, please wait until the whole folder has been synchronized and try again.</source>
        <translation>Wird der Ordner gerade synchronisiert, bitte warten, bis er vollständig synchronisiert ist, und es noch einmal versuchen.</translation>
    </message>
    <message>
        <source>This is not a valid Nimbrel Folder.</source>
        <translation>Das ist kein gültiger Nimbrel-Ordner.</translation>
    </message>
    <message>
        <source>Change password</source>
        <translation>Passwort ändern</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Change</source>
        <translation>Ändern</translation>
    </message>
    <message>
        <source>You have successfully changed the password!</source>
        <translation>Das Passwort wurde geändert!</translation>
    </message>
    <message>
        <source>You did not enter the current password.</source>
        <translation>Das aktuelle Passwort wurde nicht eingegeben.</translation>
    </message>
    <message>
        <source>Please enter a password.</source>
        <translation>Bitte ein Passwort eingeben.</translation>
    </message>
    <message>
        <source>The passwords do not match.</source>
        <translation>Die Passwörter stimmen nicht überein.</translation>
    </message>
    <message>
        <source>Enter Password</source>
        <translation>Passwort eingeben</translation>
    </message>
    <message>
        <source>You did not enter any password.</source>
        <translation>Es wurde kein Passwort eingegeben.</translation>
    </message>
    <message>
        <source>Welcome to Nimbrel</source>
        <translation>Willkommen bei Nimbrel</translation>
    </message>
    <message>
        <source>Please choose a valid folder.</source>
        <translation>Bitte einen gültigen Ordner auswählen.</translation>
    </message>
    <message>
        <source>The folder you choosed does not exist.</source>
        <translation>Der ausgewählte Ordner ist nicht vorhanden.</translation>
    </message>
    <message>
        <source>This is not a valid Nimbrel Folder. If the folder is being synchronized right now, please wait until the whole folder has been synchronized and try again.</source>
        <translation>Das ist kein gültiger Nimbrel-Ordner. Wird der Ordner gerade synchronisiert, bitte warten, bis er vollständig synchronisiert ist, und es noch einmal versuchen.</translation>
    </message>
    <message>
        <source>Open a Nimbrel Folder</source>
        <translation>Einen Nimbrel-Ordner öffnen</translation>
    </message>
    <message>
        <source>&amp;Remember the new password</source>
        <translation>Neues Passwort &amp;speichern</translation>
    </message>
    <message>
        <source>&amp;Current password:</source>
        <translation>&amp;Aktuelles Passwort:</translation>
    </message>
    <message>
        <source>&amp;New password:</source>
        <translation>&amp;Neues Passwort:</translation>
    </message>
    <message>
        <source>R&amp;epeat new password:</source>
        <translation>Neues Passwort &amp;wiederholen:</translation>
    </message>
    <message>
        <source>Keep the new password in a safe place. Without it, nobody can open the folder.</source>
        <translation>Bewahren Sie das neue Passwort an einem sicheren Ort auf. Ohne dieses Passwort kann niemand den Ordner öffnen.</translation>
    </message>
    <message>
        <source>&amp;Remember this password</source>
        <translation>Passwort &amp;speichern</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>Ordner:</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>&amp;Passwort:</translation>
    </message>
    <message>
        <source>If the password is wrong, you are asked again.</source>
        <translation>Ist das Passwort falsch, wird noch einmal danach gefragt.</translation>
    </message>
    <message>
        <source>This folder is encrypted. Enter its password to open it.</source>
        <translation>Dieser Ordner ist verschlüsselt. Geben Sie sein Passwort ein, um ihn zu öffnen.</translation>
    </message>
    <message>
        <source>&amp;Choose…</source>
        <translation>&amp;Auswählen …</translation>
    </message>
    <message>
        <source>&amp;Show the disk when it is ready</source>
        <translation>Laufwerk an&amp;zeigen, sobald es bereit ist</translation>
    </message>
    <message>
        <source>Create a &amp;new Nimbrel Folder</source>
        <translation>&amp;Neuen Nimbrel-Ordner anlegen</translation>
    </message>
    <message>
        <source>Choose this if you are new to Nimbrel. The folder lies in your cloud storage, or anywhere else, and holds your files encrypted.</source>
        <translation>Wählen Sie das, wenn Nimbrel neu für Sie ist. Der Ordner liegt in Ihrem Cloud-Speicher oder an einem beliebigen anderen Ort und enthält Ihre Dateien verschlüsselt.</translation>
    </message>
    <message>
        <source>&amp;Open an existing Nimbrel Folder</source>
        <translation>&amp;Vorhandenen Nimbrel-Ordner öffnen</translation>
    </message>
    <message>
        <source>Choose this if you made one before, for example on another computer.</source>
        <translation>Wählen Sie das, wenn Sie schon einen angelegt haben, zum Beispiel auf einem anderen Rechner.</translation>
    </message>
    <message>
        <source>Choose the Nimbrel Folder to open.</source>
        <translation>Den Nimbrel-Ordner auswählen, der geöffnet werden soll.</translation>
    </message>
    <message>
        <source>Nimbrel encrypts your files before they are stored in the cloud, and shows them to you as an ordinary disk.</source>
        <translation>Nimbrel verschlüsselt Ihre Dateien, bevor sie in der Cloud gespeichert werden, und zeigt sie Ihnen als gewöhnliches Laufwerk.</translation>
    </message>
    <message>
        <source>Caps Lock is on.</source>
        <translation>Die Feststelltaste ist aktiv.</translation>
    </message>
    <message>
        <source>%@ files (*.%@)</source>
        <translation>%@-Dateien (*.%@)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Hide password</source>
        <translation>Passwort verbergen</translation>
    </message>
    <message>
        <source>Show password</source>
        <translation>Passwort anzeigen</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>&quot;%@&quot; could not be mounted.</source>
        <translation>„%@“ konnte nicht eingehängt werden.</translation>
    </message>
    <message>
        <source>Could not create the encrypted folder.</source>
        <translation>Der verschlüsselte Ordner konnte nicht angelegt werden.</translation>
    </message>
    <message>
        <source>Nimbrel for Mac Manual</source>
        <translation>Nimbrel-Handbuch</translation>
    </message>
    <message>
        <source>The Nimbrel Folder does not exist.</source>
        <translation>Der Nimbrel-Ordner ist nicht vorhanden.</translation>
    </message>
    <message>
        <source>Tried to find it at %@</source>
        <translation>Gesucht wurde sie hier: %@</translation>
    </message>
    <message>
        <source>The configuration file does not exist.</source>
        <translation>Die Konfigurationsdatei ist nicht vorhanden.</translation>
    </message>
    <message>
        <source>It will be unmounted now.

Do you want to continue?</source>
        <translation>Das Laufwerk dort wird jetzt ausgehängt.

Möchten Sie fortfahren?</translation>
    </message>
    <message>
        <source>The mount point %@ is already in use.</source>
        <translation>Der Einhängepunkt %@ wird bereits benutzt.</translation>
    </message>
    <message>
        <source>Wrong folder configuration file!</source>
        <translation>Falsche Konfigurationsdatei im Ordner!</translation>
    </message>
    <message>
        <source>Please choose a different folder or create a new Nimbrel Folder. If the folder is being synchronized right now, please wait until the whole folder has been synchronized and try again.</source>
        <translation>Bitte einen anderen Ordner auswählen oder einen neuen Nimbrel-Ordner anlegen. Wird der Ordner gerade synchronisiert, bitte warten, bis er vollständig synchronisiert ist, und es noch einmal versuchen.</translation>
    </message>
    <message>
        <source>The path %@ is not a valid Nimbrel Folder.</source>
        <translation>Der Pfad %@ ist kein gültiger Nimbrel-Ordner.</translation>
    </message>
    <message>
        <source>The mount point does not exist.</source>
        <translation>Der Einhängepunkt ist nicht vorhanden.</translation>
    </message>
    <message>
        <source>The mount point is not a directory.</source>
        <translation>Der Einhängepunkt ist kein Ordner.</translation>
    </message>
    <message>
        <source>The mount point is not empty.</source>
        <translation>Der Einhängepunkt ist nicht leer.</translation>
    </message>
    <message>
        <source>Could not delete the mount point.</source>
        <translation>Der Einhängepunkt konnte nicht gelöscht werden.</translation>
    </message>
    <message>
        <source>Its files are in use. Close the programs that use them, then try again.</source>
        <translation>Seine Dateien werden benutzt. Bitte die Programme schließen, die sie benutzen, und es dann noch einmal versuchen.</translation>
    </message>
    <message>
        <source>%@. Close that first, then try again.</source>
        <translation>%@. Bitte zuerst das schließen und es dann noch einmal versuchen.</translation>
    </message>
    <message>
        <source>&quot;%@&quot; could not be unmounted.</source>
        <translation>„%@“ konnte nicht ausgehängt werden.</translation>
    </message>
    <message>
        <source>The current password is not correct.</source>
        <translation>Das aktuelle Passwort ist nicht richtig.</translation>
    </message>
    <message>
        <source>Could not change the password.</source>
        <translation>Das Passwort konnte nicht geändert werden.</translation>
    </message>
    <message>
        <source>The new Nimbrel Folder has not been created!</source>
        <translation>Der neue Nimbrel-Ordner wurde nicht angelegt!</translation>
    </message>
    <message>
        <source>The file was kept as %@. Add your encrypted folders again; none of their files is touched.</source>
        <translation>Die Datei wurde als %@ aufbewahrt. Fügen Sie Ihre verschlüsselten Ordner erneut hinzu; keine ihrer Dateien wird angetastet.</translation>
    </message>
    <message>
        <source>Add your encrypted folders again; none of their files is touched.</source>
        <translation>Fügen Sie Ihre verschlüsselten Ordner erneut hinzu; keine ihrer Dateien wird angetastet.</translation>
    </message>
    <message>
        <source>The list of volumes could not be read.</source>
        <translation>Die Liste der Laufwerke konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>The list of volumes could not be saved.</source>
        <translation>Die Liste der Laufwerke konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Modify advanced options</source>
        <translation>Erweiterte Optionen ändern</translation>
    </message>
    <message>
        <source>Finish</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>A volume with this label already exists.</source>
        <translation>Ein Laufwerk mit dieser Bezeichnung gibt es schon.</translation>
    </message>
    <message>
        <source>The block size has to be a multiple of 16.</source>
        <translation>Die Blockgröße muss ein Vielfaches von 16 sein.</translation>
    </message>
    <message>
        <source>You did not specify an alternative configuration file.</source>
        <translation>Es wurde keine andere Konfigurationsdatei angegeben.</translation>
    </message>
    <message>
        <source>Choose the Configuration File</source>
        <translation>Konfigurationsdatei auswählen</translation>
    </message>
    <message>
        <source>Create a password</source>
        <translation>Passwort festlegen</translation>
    </message>
    <message>
        <source>Create a new Nimbrel Folder</source>
        <translation>Neuen Nimbrel-Ordner anlegen</translation>
    </message>
    <message>
        <source>Other…</source>
        <translation>Anderer …</translation>
    </message>
    <message>
        <source>The location you&apos;ve choosed does not exist.</source>
        <translation>Der ausgewählte Ort ist nicht vorhanden.</translation>
    </message>
    <message>
        <source>Please enter a valid folder name.</source>
        <translation>Bitte einen gültigen Ordnernamen eingeben.</translation>
    </message>
    <message>
        <source>A file or folder with this name already exists.</source>
        <translation>Eine Datei oder einen Ordner mit diesem Namen gibt es schon.</translation>
    </message>
    <message>
        <source>Choose a Location</source>
        <translation>Ort auswählen</translation>
    </message>
    <message>
        <source>Congratulations!</source>
        <translation>Herzlichen Glückwunsch!</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Back Up Configuration File</source>
        <translation>Konfigurationsdatei sichern</translation>
    </message>
    <message>
        <source>Nimbrel Configuration</source>
        <translation>Nimbrel-Konfiguration</translation>
    </message>
    <message>
        <source>This is the configuration file itself, and no backup of it. Please choose another place.</source>
        <translation>Das ist die Konfigurationsdatei selbst und keine Sicherung davon. Bitte einen anderen Ort auswählen.</translation>
    </message>
    <message>
        <source>The configuration file has been successfully backed up!

Information about restoring it can be found in the manual or on our website.</source>
        <translation>Die Konfigurationsdatei wurde gesichert!

Wie sie sich zurückholen lässt, steht im Handbuch oder auf unserer Website.</translation>
    </message>
    <message>
        <source>The backup could not be made. %@ Please choose another place.</source>
        <translation>Die Sicherung ist nicht gelungen. %@ Bitte einen anderen Ort auswählen.</translation>
    </message>
    <message>
        <source>&amp;Encryption:</source>
        <translation>&amp;Verschlüsselung:</translation>
    </message>
    <message>
        <source>Block &amp;size:</source>
        <translation>Block&amp;größe:</translation>
    </message>
    <message>
        <source>bytes</source>
        <translation>Byte</translation>
    </message>
    <message>
        <source>Encrypt &amp;file names</source>
        <translation>Datei&amp;namen verschlüsseln</translation>
    </message>
    <message>
        <source>&amp;Label:</source>
        <translation>&amp;Bezeichnung:</translation>
    </message>
    <message>
        <source>Options:</source>
        <translation>Optionen:</translation>
    </message>
    <message>
        <source>AES-256 is the strongest, AES-128 the fastest.</source>
        <translation>AES-256 ist am stärksten, AES-128 am schnellsten.</translation>
    </message>
    <message>
        <source>Otherwise whoever sees the folder can read the names of your files.</source>
        <translation>Sonst kann jeder, der den Ordner sieht, die Namen Ihrer Dateien lesen.</translation>
    </message>
    <message>
        <source>Open when Nimbrel s&amp;tarts</source>
        <translation>Beim &amp;Start von Nimbrel einhängen</translation>
    </message>
    <message>
        <source>The disk is there as soon as Nimbrel runs.</source>
        <translation>Das Laufwerk ist da, sobald Nimbrel läuft.</translation>
    </message>
    <message>
        <source>&amp;Check the key</source>
        <translation>Schlüssel &amp;prüfen</translation>
    </message>
    <message>
        <source>Let the desktop &amp;index its content</source>
        <translation>Inhalt in den Such&amp;index aufnehmen</translation>
    </message>
    <message>
        <source>Show as a local &amp;disk</source>
        <translation>Als &amp;lokales Laufwerk anzeigen</translation>
    </message>
    <message>
        <source>&amp;All users of this computer may use it</source>
        <translation>Für &amp;alle Benutzer dieses Rechners</translation>
    </message>
    <message>
        <source>As far as the files&apos; permissions allow.</source>
        <translation>Soweit die Rechte der Dateien es erlauben.</translation>
    </message>
    <message>
        <source>For the search of your desktop. The index itself is not encrypted.</source>
        <translation>Für die Suche Ihres Desktops. Der Index selbst ist nicht verschlüsselt.</translation>
    </message>
    <message>
        <source>Keep the configuration file in an&amp;other place:</source>
        <translation>&amp;Konfigurationsdatei an einem anderen Ort aufbewahren:</translation>
    </message>
    <message>
        <source>It is needed together with the password to open the folder.</source>
        <translation>Sie wird zusammen mit dem Passwort gebraucht, um den Ordner zu öffnen.</translation>
    </message>
    <message>
        <source>Configuration file</source>
        <translation>Konfigurationsdatei</translation>
    </message>
    <message>
        <source>&amp;Browse…</source>
        <translation>&amp;Durchsuchen …</translation>
    </message>
    <message>
        <source>This changes the password of the folder. The files in it stay as they are.</source>
        <translation>Hier ändern Sie das Passwort des Ordners. Die Dateien darin bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>It is kept in the keyring of your desktop.</source>
        <translation>Es wird im Schlüsselbund Ihres Desktops aufbewahrt.</translation>
    </message>
    <message>
        <source>Strength of the password</source>
        <translation>Stärke des Passworts</translation>
    </message>
    <message>
        <source>The folder opens with this password alone. Nobody can recover it, not even you: without it your files are lost. Keep it in a safe place.</source>
        <translation>Der Ordner öffnet sich nur mit diesem Passwort. Niemand kann es wiederherstellen, auch Sie nicht: Ohne das Passwort sind Ihre Dateien verloren. Bewahren Sie es an einem sicheren Ort auf.</translation>
    </message>
    <message>
        <source>R&amp;epeat it:</source>
        <translation>&amp;Wiederholen:</translation>
    </message>
    <message>
        <source>Time to guess it: %@</source>
        <translation>Zeit, um es zu erraten: %@</translation>
    </message>
    <message>
        <source>Documents</source>
        <translation>Dokumente</translation>
    </message>
    <message>
        <source>No location is chosen.</source>
        <translation>Es ist kein Ort ausgewählt.</translation>
    </message>
    <message>
        <source>Give the folder a name and choose where it is kept. Put it into the folder of your cloud service to have it on all your computers.</source>
        <translation>Geben Sie dem Ordner einen Namen und wählen Sie, wo er liegen soll. Im Ordner Ihres Cloud-Programms haben Sie ihn auf allen Ihren Rechnern.</translation>
    </message>
    <message>
        <source>For example: Private</source>
        <translation>Zum Beispiel: Privat</translation>
    </message>
    <message>
        <source>A name can&apos;t have a “/” in it, or be longer than this.</source>
        <translation>Ein Name darf kein „/“ enthalten und nicht länger sein als dieser.</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>&amp;Location:</source>
        <translation>&amp;Ort:</translation>
    </message>
    <message>
        <source>Path:</source>
        <translation>Pfad:</translation>
    </message>
    <message>
        <source>&amp;Back Up Configuration File…</source>
        <translation>&amp;Konfigurationsdatei sichern …</translation>
    </message>
    <message>
        <source>&amp;Show the disk when I am done</source>
        <translation>Laufwerk anschließend an&amp;zeigen</translation>
    </message>
    <message>
        <source>Your Nimbrel Folder is ready. It shows itself as a disk: whatever you put on that disk is encrypted before it is stored.</source>
        <translation>Ihr Nimbrel-Ordner ist bereit. Er zeigt sich als Laufwerk: Was Sie dort ablegen, wird verschlüsselt gespeichert.</translation>
    </message>
    <message>
        <source>The folder&apos;s configuration file holds its key, locked by your password. Without this file not even the password opens the folder, so keep a copy of it in another place, for example on a memory stick.</source>
        <translation>Die Konfigurationsdatei des Ordners enthält seinen Schlüssel, verschlossen mit Ihrem Passwort. Ohne diese Datei öffnet auch das Passwort den Ordner nicht. Bewahren Sie deshalb eine Kopie an einem anderen Ort auf, zum Beispiel auf einem USB-Stick.</translation>
    </message>
    <message>
        <source>What would you like to do?</source>
        <translation>Was möchten Sie tun?</translation>
    </message>
    <message>
        <source>This is an encrypted folder which contains files encrypted with Nimbrel.<byte value="xd"/>
<byte value="xd"/>
IMPORTANT: Do NOT store plaintext files directly in this folder. They will NOT be encrypted!<byte value="xd"/>
<byte value="xd"/>
Only files processed by the Nimbrel applications will be protected by Nimbrel. You want to encrypt your files? Simply store them in the Nimbrel applications and Nimbrel will encrypt them!<byte value="xd"/>
<byte value="xd"/>
WARNING: The .encfs6.xml file in this folder is a configuration file needed by Nimbrel. This file holds all information required for encrypting and decrypting your data. If the file gets lost or overwritten, you will lose access to your data!<byte value="xd"/>
</source>
        <translation>Dies ist ein verschlüsselter Ordner. Er enthält Dateien, die mit Nimbrel verschlüsselt sind.<byte value="xd"/>
<byte value="xd"/>
WICHTIG: Legen Sie KEINE unverschlüsselten Dateien unmittelbar in diesen Ordner. Sie werden NICHT verschlüsselt!<byte value="xd"/>
<byte value="xd"/>
Nur Dateien, die über die Nimbrel-Programme gespeichert werden, sind durch Nimbrel geschützt. Sie möchten Ihre Dateien verschlüsseln? Speichern Sie sie einfach in den Nimbrel-Programmen, und Nimbrel verschlüsselt sie!<byte value="xd"/>
<byte value="xd"/>
WARNUNG: Die Datei .encfs6.xml in diesem Ordner ist eine Konfigurationsdatei, die Nimbrel braucht. Sie enthält alles, was zum Ver- und Entschlüsseln Ihrer Daten nötig ist. Geht die Datei verloren oder wird sie überschrieben, verlieren Sie den Zugang zu Ihren Daten!<byte value="xd"/>
</translation>
    </message>
    <message>
        <source>Please give the whole path of the configuration file, beginning with &quot;/&quot;.</source>
        <translation>Bitte den ganzen Pfad der Konfigurationsdatei angeben, beginnend mit „/“.</translation>
    </message>
    <message>
        <source>Please choose a location for the folder.</source>
        <translation>Bitte einen Ort für den Ordner auswählen.</translation>
    </message>
    <message>
        <source>A multiple of 16, at least 16. Leave it unless you know what suits you better.</source>
        <translation>Ein Vielfaches von 16, mindestens 16. Ändern Sie sie nur, wenn Sie wissen, was besser passt.</translation>
    </message>
    <message>
        <source>Kept for other systems: it changes nothing on this one.</source>
        <translation>Für andere Systeme erhalten: Auf diesem ändert sich dadurch nichts.</translation>
    </message>
    <message>
        <source>The password is being changed</source>
        <translation>Das Passwort wird geändert</translation>
    </message>
    <message>
        <source>a disk is mounted at {path}</source>
        <translation>ein Laufwerk ist in {path} eingehängt</translation>
    </message>
    <message>
        <source>{who} uses it</source>
        <translation>{who} benutzt es</translation>
    </message>
    <message>
        <source>{who} has {path} open</source>
        <translation>{who} hat {path} geöffnet</translation>
    </message>
    <message>
        <source>, and {count} more</source>
        <translation>, und {count} weitere</translation>
    </message>
    <message>
        <source>Keeps a folder encrypted in your cloud storage and shows it to you as an ordinary disk.

Runs with Qt %@ and FUSE %@.

Nimbrel is free software under the GNU General Public License, version 3. It comes without any warranty.</source>
        <translation>Hält einen Ordner in Ihrem Cloud-Speicher verschlüsselt und zeigt ihn Ihnen als gewöhnliches Laufwerk.

Läuft mit Qt %@ und FUSE %@.

Nimbrel ist freie Software unter der GNU General Public License, Version 3. Es gibt keinerlei Gewährleistung.</translation>
    </message>
    <message>
        <source>About Nimbrel</source>
        <translation>Über Nimbrel</translation>
    </message>
    <message>
        <source>Nimbrel %@</source>
        <translation>Nimbrel %@</translation>
    </message>
    <message>
        <source>It is no RSS.</source>
        <translation>Es ist kein RSS.</translation>
    </message>
    <message>
        <source>It has no channel.</source>
        <translation>Es hat keinen Kanal.</translation>
    </message>
    <message>
        <source>Line %ld: %@</source>
        <translation>Zeile %ld: %@</translation>
    </message>
    <message>
        <source>Too many elements lie in one another.</source>
        <translation>Zu viele Elemente liegen ineinander.</translation>
    </message>
    <message>
        <source>Nimbrel is running and doesn&apos;t answer. End it, then try again.</source>
        <translation>Nimbrel läuft und antwortet nicht. Beenden Sie es und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>This file could not be located in any of the mounted Nimbrel disks.</source>
        <translation>Diese Datei wurde auf keinem der eingehängten Nimbrel-Laufwerke gefunden.</translation>
    </message>
    <message>
        <source>File not found!</source>
        <translation>Datei nicht gefunden!</translation>
    </message>
    <message>
        <source>Nimbrel is running in another session already (process %@). Quit it there first.</source>
        <translation>Nimbrel läuft bereits in einer anderen Sitzung (Prozess %@). Beenden Sie es zuerst dort.</translation>
    </message>
    <message>
        <source>&amp;Preferences…</source>
        <translation>&amp;Einstellungen …</translation>
    </message>
    <message>
        <source>&amp;About Nimbrel</source>
        <translation>Ü&amp;ber Nimbrel</translation>
    </message>
    <message>
        <source>&amp;Quit Nimbrel</source>
        <translation>Nimbrel &amp;beenden</translation>
    </message>
    <message>
        <source>Nimbrel: no disk is mounted</source>
        <translation>Nimbrel: kein Laufwerk eingehängt</translation>
    </message>
    <message>
        <source>Nimbrel: mounted: %@</source>
        <translation>Nimbrel: eingehängt: %@</translation>
    </message>
    <message>
        <source>&amp;Nimbrel</source>
        <translation>&amp;Nimbrel</translation>
    </message>
    <message>
        <source>New Volume…</source>
        <translation>Neues Laufwerk …</translation>
    </message>
    <message>
        <source>Open %@</source>
        <translation>%@ öffnen</translation>
    </message>
    <message>
        <source>Unmount %@</source>
        <translation>%@ aushängen</translation>
    </message>
    <message>
        <source>Mount %@</source>
        <translation>%@ einhängen</translation>
    </message>
    <message>
        <source>Still in use: %@. Programs that have files open there can&apos;t save them any more when Nimbrel quits.</source>
        <translation>Noch in Gebrauch: %@. Programme, die dort Dateien geöffnet haben, können sie nicht mehr sichern, wenn Nimbrel beendet wird.</translation>
    </message>
    <message>
        <source>Do you really want to quit Nimbrel?</source>
        <translation>Möchten Sie Nimbrel wirklich beenden?</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>&quot;%@&quot; is no folder on this computer.</source>
        <translation>„%@“ ist kein Ordner auf diesem Computer.</translation>
    </message>
    <message>
        <source>Disks are unmounted</source>
        <translation>Laufwerke werden ausgehängt</translation>
    </message>
    <message>
        <source>There is no newer version than %@, which you have.</source>
        <translation>Es gibt keine neuere Version als %@, die Sie haben.</translation>
    </message>
    <message>
        <source>Nimbrel is up to date.</source>
        <translation>Nimbrel ist auf dem neuesten Stand.</translation>
    </message>
    <message>
        <source>Nimbrel could not look for updates.</source>
        <translation>Nimbrel konnte nicht nach Updates suchen.</translation>
    </message>
    <message>
        <source>A disk with a synchronised folder doesn&apos;t answer, so %@ was not asked. Reconnect or unmount network disks, then try again.</source>
        <translation>Ein Laufwerk mit einem abgeglichenen Ordner antwortet nicht, deshalb wurde %@ nicht gefragt. Verbinden Sie Netzlaufwerke neu oder hängen Sie sie aus und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>%@ can&apos;t be reached. Check that this computer is online, then try again.</source>
        <translation>%@ ist nicht erreichbar. Prüfen Sie, ob dieser Computer online ist, und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>%@ didn&apos;t answer in time. Try again later.</source>
        <translation>%@ hat nicht rechtzeitig geantwortet. Versuchen Sie es später erneut.</translation>
    </message>
    <message>
        <source>No secure connection to %@ is possible, so nothing was asked: %@. Check this computer&apos;s date, and whether the network wants you to sign in first, then try again.</source>
        <translation>Eine sichere Verbindung zu %@ ist nicht möglich, deshalb wurde nichts gefragt: %@. Prüfen Sie das Datum dieses Computers und ob das Netzwerk erst eine Anmeldung verlangt, und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>%@ sent the request on too often, or to a place that isn&apos;t secure, where nothing was asked. Try again later.</source>
        <translation>%@ hat die Anfrage zu oft weitergeleitet oder an einen unsicheren Ort, wo nichts gefragt wurde. Versuchen Sie es später erneut.</translation>
    </message>
    <message>
        <source>%@ answered with the error %@. Try again later.</source>
        <translation>%@ antwortete mit dem Fehler %@. Versuchen Sie es später erneut.</translation>
    </message>
    <message>
        <source>%@ sent more than a list of versions ever has. Check whether the network wants you to sign in first, then try again.</source>
        <translation>%@ schickte mehr, als eine Liste von Versionen je hat. Prüfen Sie, ob das Netzwerk erst eine Anmeldung verlangt, und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>%@ didn&apos;t send a list of versions (%@). Check whether the network wants you to sign in first, then try again.</source>
        <translation>%@ schickte keine Liste von Versionen (%@). Prüfen Sie, ob das Netzwerk erst eine Anmeldung verlangt, und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>The connection to %@ failed: %@. Try again later.</source>
        <translation>Die Verbindung zu %@ ist gescheitert: %@. Versuchen Sie es später erneut.</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>Please select a Nimbrel Folder from the list or browse for a custom one.</source>
        <translation>Bitte wählen Sie einen Nimbrel-Ordner aus der Liste oder suchen Sie selbst einen.</translation>
    </message>
    <message>
        <source>Choose a Nimbrel Folder</source>
        <translation>Nimbrel-Ordner wählen</translation>
    </message>
    <message>
        <source>No Nimbrel Folders were found here. Use “Other…” to browse.</source>
        <translation>Hier wurden keine Nimbrel-Ordner gefunden. Mit „Anderer …“ suchen Sie selbst.</translation>
    </message>
    <message>
        <source>1 Nimbrel Folder was found here.</source>
        <translation>1 Nimbrel-Ordner wurde hier gefunden.</translation>
    </message>
    <message>
        <source>%@ Nimbrel Folders were found here.</source>
        <translation>%@ Nimbrel-Ordner wurden hier gefunden.</translation>
    </message>
    <message>
        <source>Looking for Nimbrel Folders in %@…</source>
        <translation>Suche nach Nimbrel-Ordnern in %@ …</translation>
    </message>
    <message>
        <source>A volume with this Nimbrel Folder already exists.</source>
        <translation>Ein Laufwerk mit diesem Nimbrel-Ordner gibt es bereits.</translation>
    </message>
    <message>
        <source>This build of Nimbrel has no address in the App Store.</source>
        <translation>Diese Fassung von Nimbrel hat keine Adresse im App Store.</translation>
    </message>
    <message>
        <source>This build of Nimbrel has no address in Google Play.</source>
        <translation>Diese Fassung von Nimbrel hat keine Adresse bei Google Play.</translation>
    </message>
    <message>
        <source>This build of Nimbrel has no addresses in these stores. Whoever builds it can give it some.</source>
        <translation>Diese Fassung von Nimbrel hat keine Adressen in diesen Läden. Wer sie baut, kann ihr welche geben.</translation>
    </message>
    <message>
        <source>Never checked for updates yet!</source>
        <translation>Noch nie nach Updates gesucht!</translation>
    </message>
    <message>
        <source>Last check was on </source>
        <translation>Zuletzt gesucht am </translation>
    </message>
    <message>
        <source>This build of Nimbrel has no address for updates, so it never asks for them.</source>
        <translation>Diese Fassung von Nimbrel hat keine Adresse für Updates und fragt deshalb nie danach.</translation>
    </message>
    <message>
        <source>Nimbrel asks %@ for updates, at most once a day. It tells its version and whether you want test versions, a number that stands for this computer (a digest), whether this is its first start, how many disks you have, whether file names are encrypted, and which of the known cloud services hold your folders. It tells no names, no paths and no passwords.</source>
        <translation>Nimbrel fragt %@ nach Updates, höchstens einmal am Tag. Es nennt seine Version und ob Sie Testversionen wünschen, eine Zahl, die für diesen Computer steht (eine Prüfsumme), ob dies sein erster Start ist, wie viele Laufwerke Sie haben, ob Dateinamen verschlüsselt sind und bei welchen der bekannten Cloud-Dienste Ihre Ordner liegen. Es nennt keine Namen, keine Pfade und keine Passwörter.</translation>
    </message>
    <message>
        <source>The entry in the folder “autostart” of your settings folder couldn&apos;t be written. Please check that this folder can be written and that the disk isn&apos;t full, and try again.</source>
        <translation>Der Eintrag im Ordner „autostart“ Ihres Einstellungsordners konnte nicht geschrieben werden. Bitte prüfen Sie, ob dieser Ordner beschreibbar und der Datenträger nicht voll ist, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>Nimbrel won&apos;t start when you log in.</source>
        <translation>Nimbrel wird bei der Anmeldung nicht starten.</translation>
    </message>
    <message>
        <source>Nimbrel will still start when you log in.</source>
        <translation>Nimbrel wird bei der Anmeldung weiterhin starten.</translation>
    </message>
    <message>
        <source>%@

They are in force until Nimbrel quits. Please check that your settings folder can be written and that the disk isn&apos;t full, and close the preferences once more.</source>
        <translation>%@

Sie gelten, bis Nimbrel beendet wird. Bitte prüfen Sie, ob Ihr Einstellungsordner beschreibbar und der Datenträger nicht voll ist, und schließen Sie die Einstellungen noch einmal.</translation>
    </message>
    <message>
        <source>The preferences couldn&apos;t be saved.</source>
        <translation>Die Einstellungen konnten nicht gesichert werden.</translation>
    </message>
    <message>
        <source>Show Encrypted File</source>
        <translation>Verschlüsselte Datei zeigen</translation>
    </message>
    <message>
        <source>%@

Please open the preferences and try again when this has been put right.</source>
        <translation>%@

Bitte öffnen Sie die Einstellungen und versuchen Sie es erneut, wenn das behoben ist.</translation>
    </message>
    <message>
        <source>The menus of file managers couldn&apos;t be changed.</source>
        <translation>Die Menüs der Dateiverwaltungen konnten nicht geändert werden.</translation>
    </message>
    <message>
        <source>Version %@ can be downloaded. You have version %@.</source>
        <translation>Version %@ kann heruntergeladen werden. Sie haben Version %@.</translation>
    </message>
    <message>
        <source>Version %@ of %@ can be downloaded. You have version %@.</source>
        <translation>Version %@ vom %@ kann heruntergeladen werden. Sie haben Version %@.</translation>
    </message>
    <message>
        <source>A new version of Nimbrel is available.</source>
        <translation>Eine neue Version von Nimbrel ist da.</translation>
    </message>
    <message>
        <source>Nimbrel will not create the Nimbrel volume and you will not be able to encrypt or decrypt files. Please create or open an encrypted folder in order to secure your private files with Nimbrel.

Do you really want to close this window?</source>
        <translation>Nimbrel wird kein Nimbrel-Laufwerk anlegen, und Sie können keine Dateien ver- oder entschlüsseln. Bitte erstellen oder öffnen Sie einen verschlüsselten Ordner, um Ihre privaten Dateien mit Nimbrel zu schützen.

Möchten Sie dieses Fenster wirklich schließen?</translation>
    </message>
    <message>
        <source>You did not choose any encrypted folder.</source>
        <translation>Sie haben keinen verschlüsselten Ordner gewählt.</translation>
    </message>
    <message>
        <source>The encrypted folder does not exist.</source>
        <translation>Der verschlüsselte Ordner existiert nicht.</translation>
    </message>
    <message>
        <source>You can mount the volume always using the Nimbrel icon in the menu bar.</source>
        <translation>Über das Nimbrel-Symbol in der Leiste können Sie das Laufwerk jederzeit einhängen.</translation>
    </message>
    <message>
        <source>The Nimbrel Volume has not been mounted.</source>
        <translation>Das Nimbrel-Laufwerk wurde nicht eingehängt.</translation>
    </message>
    <message>
        <source>Edit Nimbrel Volume</source>
        <translation>Nimbrel-Laufwerk bearbeiten</translation>
    </message>
    <message>
        <source>Warning: Only the first volume will remain. All additional volumes will be unmounted and removed. They will NOT be deleted from your disk.</source>
        <translation>Achtung: Nur das erste Laufwerk bleibt. Alle weiteren werden ausgehängt und von der Liste genommen. Sie werden NICHT von Ihrer Festplatte gelöscht.</translation>
    </message>
    <message>
        <source>Are you sure that you want to switch to simple mode?</source>
        <translation>Möchten Sie wirklich in den einfachen Modus wechseln?</translation>
    </message>
    <message>
        <source>Only enable Advanced Mode if you need to modify advanced options and if you know what you do.</source>
        <translation>Schalten Sie den erweiterten Modus nur ein, wenn Sie erweiterte Optionen ändern müssen und wissen, was Sie tun.</translation>
    </message>
    <message>
        <source>Do you really want to enable Advanced Mode?</source>
        <translation>Möchten Sie den erweiterten Modus wirklich einschalten?</translation>
    </message>
    <message>
        <source>Continue to open this encrypted folder?</source>
        <translation>Diesen verschlüsselten Ordner öffnen?</translation>
    </message>
    <message>
        <source>Another Nimbrel Folder is already opened in Nimbrel. It will be ejected before this Nimbrel Folder will be opened.</source>
        <translation>Ein anderer Nimbrel-Ordner ist bereits in Nimbrel geöffnet. Er wird ausgehängt, bevor dieser Nimbrel-Ordner geöffnet wird.</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Simple</source>
        <translation>Einfach</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>Erweitert</translation>
    </message>
    <message>
        <source>Serve one encrypted folder only</source>
        <translation>Nur einen verschlüsselten Ordner verwalten</translation>
    </message>
    <message>
        <source>Serve several encrypted folders, with more options</source>
        <translation>Mehrere verschlüsselte Ordner verwalten, mit mehr Optionen</translation>
    </message>
    <message>
        <source>Create a new encrypted folder, or open one that exists.</source>
        <translation>Erstellen Sie einen neuen verschlüsselten Ordner oder öffnen Sie einen vorhandenen.</translation>
    </message>
    <message>
        <source>The folder is mounted.</source>
        <translation>Der Ordner ist eingehängt.</translation>
    </message>
    <message>
        <source>The folder is not mounted.</source>
        <translation>Der Ordner ist nicht eingehängt.</translation>
    </message>
    <message>
        <source>You will have to re-enter it the next time you want to open this encrypted folder.</source>
        <translation>Sie müssen es beim nächsten Öffnen dieses verschlüsselten Ordners neu eingeben.</translation>
    </message>
    <message>
        <source>Are you sure that you want to clear the password currently stored on this computer?</source>
        <translation>Möchten Sie das auf diesem Computer gespeicherte Passwort wirklich löschen?</translation>
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
        <source>The stored password was successfully cleared.</source>
        <translation>Das gespeicherte Passwort wurde gelöscht.</translation>
    </message>
    <message>
        <source>Mount</source>
        <translation>Einhängen</translation>
    </message>
    <message>
        <source>Unmount</source>
        <translation>Aushängen</translation>
    </message>
    <message>
        <source>Change Password…</source>
        <translation>Passwort ändern …</translation>
    </message>
    <message>
        <source>Clear Password</source>
        <translation>Passwort löschen</translation>
    </message>
    <message>
        <source>Edit…</source>
        <translation>Bearbeiten …</translation>
    </message>
    <message>
        <source>Show in File Manager</source>
        <translation>In der Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <source>It is being mounted or unmounted. Please wait until that has ended and try again.</source>
        <translation>Es wird gerade ein- oder ausgehängt. Bitte warten Sie das ab und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>&quot;%@&quot; is busy.</source>
        <translation>„%@“ ist beschäftigt.</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>Choose one of the Nimbrel Folders found on this computer, or browse for it.</source>
        <translation>Wählen Sie einen der auf diesem Computer gefundenen Nimbrel-Ordner, oder suchen Sie selbst.</translation>
    </message>
    <message>
        <source>Nimbrel Folders</source>
        <translation>Nimbrel-Ordner</translation>
    </message>
    <message>
        <source>Looking for Nimbrel Folders</source>
        <translation>Suche nach Nimbrel-Ordnern</translation>
    </message>
    <message>
        <source>On phones and tablets, the mobile client opens the Nimbrel Folders that your cloud service brings there.</source>
        <translation>Auf Telefonen und Tablets öffnet das mobile Programm die Nimbrel-Ordner, die Ihr Cloud-Dienst dorthin bringt.</translation>
    </message>
    <message>
        <source>Download from the &amp;App Store</source>
        <translation>Im &amp;App Store laden</translation>
    </message>
    <message>
        <source>Download from &amp;Google Play</source>
        <translation>Bei &amp;Google Play laden</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>Nimbrel for Mobile Devices</source>
        <translation>Nimbrel für Mobilgeräte</translation>
    </message>
    <message>
        <source>&amp;Start Nimbrel when I log in</source>
        <translation>Nimbrel bei der &amp;Anmeldung starten</translation>
    </message>
    <message>
        <source>Show mounted disks on the &amp;desktop</source>
        <translation>Eingehängte Laufwerke auf dem &amp;Schreibtisch zeigen</translation>
    </message>
    <message>
        <source>Put my &amp;user name before the names of disks</source>
        <translation>Meinen &amp;Benutzernamen vor die Namen der Laufwerke setzen</translation>
    </message>
    <message>
        <source>Add “Show Encrypted File” to the &amp;menus of file managers</source>
        <translation>„Verschlüsselte Datei zeigen“ in die &amp;Menüs der Dateiverwaltungen setzen</translation>
    </message>
    <message>
        <source>Check &amp;Now</source>
        <translation>&amp;Jetzt suchen</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>A link to each disk while it is mounted.</source>
        <translation>Eine Verknüpfung zu jedem Laufwerk, solange es eingehängt ist.</translation>
    </message>
    <message>
        <source>Tells the disks of several users of this computer apart. Mounted disks keep their names.</source>
        <translation>Hält die Laufwerke mehrerer Benutzer dieses Computers auseinander. Eingehängte Laufwerke behalten ihren Namen.</translation>
    </message>
    <message>
        <source>For a file on one of your disks: shows what it is called in its encrypted folder.</source>
        <translation>Für eine Datei auf einem Ihrer Laufwerke: zeigt, wie sie in ihrem verschlüsselten Ordner heißt.</translation>
    </message>
    <message>
        <source>Open &amp;Download Page</source>
        <translation>Seite zum &amp;Herunterladen öffnen</translation>
    </message>
    <message>
        <source>&amp;Later</source>
        <translation>&amp;Später</translation>
    </message>
    <message>
        <source>Nimbrel Update</source>
        <translation>Nimbrel-Update</translation>
    </message>
    <message>
        <source>What is new</source>
        <translation>Was neu ist</translation>
    </message>
    <message>
        <source>Encrypted folders</source>
        <translation>Verschlüsselte Ordner</translation>
    </message>
    <message>
        <source>There is no encrypted folder yet. Create a new one, or add one that exists: you can drop it here.</source>
        <translation>Noch gibt es keinen verschlüsselten Ordner. Erstellen Sie einen neuen oder fügen Sie einen vorhandenen hinzu: Sie können ihn hierher ziehen.</translation>
    </message>
    <message>
        <source>Toolbar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Create a new encrypted folder</source>
        <translation>Einen neuen verschlüsselten Ordner erstellen</translation>
    </message>
    <message>
        <source>Open an encrypted folder that exists</source>
        <translation>Einen vorhandenen verschlüsselten Ordner öffnen</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Take the folder off this list; its files stay</source>
        <translation>Den Ordner von dieser Liste nehmen; seine Dateien bleiben</translation>
    </message>
    <message>
        <source>Show the folder decrypted</source>
        <translation>Den Ordner entschlüsselt zeigen</translation>
    </message>
    <message>
        <source>Close the decrypted folder</source>
        <translation>Den entschlüsselten Ordner schließen</translation>
    </message>
    <message>
        <source>Change Password</source>
        <translation>Passwort ändern</translation>
    </message>
    <message>
        <source>Give the mounted folder another password</source>
        <translation>Dem eingehängten Ordner ein anderes Passwort geben</translation>
    </message>
    <message>
        <source>Forget the password that is stored on this computer</source>
        <translation>Das auf diesem Computer gespeicherte Passwort vergessen</translation>
    </message>
    <message>
        <source>Nimbrel&apos;s settings</source>
        <translation>Einstellungen von Nimbrel</translation>
    </message>
    <message>
        <source>Mobile</source>
        <translation>Mobil</translation>
    </message>
    <message>
        <source>Nimbrel for phones and tablets</source>
        <translation>Nimbrel für Telefone und Tablets</translation>
    </message>
    <message>
        <source>Change the mode</source>
        <translation>Den Modus wechseln</translation>
    </message>
    <message>
        <source>Your files lie encrypted in this folder. While it is mounted, you work with them on the Nimbrel volume.</source>
        <translation>In diesem Ordner liegen Ihre Dateien verschlüsselt. Ist er eingehängt, arbeiten Sie mit ihnen auf dem Nimbrel-Laufwerk.</translation>
    </message>
    <message>
        <source>Encrypted folder</source>
        <translation>Verschlüsselter Ordner</translation>
    </message>
    <message>
        <source>No encrypted folder yet</source>
        <translation>Noch kein verschlüsselter Ordner</translation>
    </message>
    <message>
        <source>&amp;Show in File Manager</source>
        <translation>In der &amp;Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <source>mounted</source>
        <translation>eingehängt</translation>
    </message>
    <message>
        <source>not mounted</source>
        <translation>nicht eingehängt</translation>
    </message>
</context>
</TS>
