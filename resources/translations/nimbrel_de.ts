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
</context>
</TS>
