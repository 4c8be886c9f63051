<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>nimbrel</name>
    <message>
        <source>Couldn&apos;t load the file %@.nib!

This can happen if you move Pellamere after running it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Missing Resource</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>less than a second</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>minutes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>hours</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>days</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>months</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>years</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>centuries</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Very Weak</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Weak</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Good</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Strong</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Very Strong</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Step %@ of %@: %@</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Go Back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Next</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%@ failed to setup with error: %d. Please contact support.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nimbrel Assistant</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>If the folder is being synchronized right now, please wait until the whole folder has been synchronized and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is not a valid Nimbrel Folder.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Change password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This changes the password of &quot;%1&quot;. The files in it stay as they are.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Change</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>You have successfully changed the password!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>You did not enter the current password.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please enter a password.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The passwords do not match.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter Password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>You did not enter any password.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Welcome to Nimbrel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please choose a valid folder.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder you choosed does not exist.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is not a valid Nimbrel Folder. If the folder is being synchronized right now, please wait until the whole folder has been synchronized and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open a Nimbrel Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Remember the new password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Current password:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;New password:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>R&amp;epeat new password:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Keep the new password in a safe place. Without it, nobody can open the folder.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Remember this password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>If the password is wrong, you are asked again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This folder is encrypted. Enter its password to open it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Choose…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Show the disk when it is ready</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Create a &amp;new Nimbrel Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose this if you are new to Nimbrel. The folder lies in your cloud storage, or anywhere else, and holds your files encrypted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Open an existing Nimbrel Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose this if you made one before, for example on another computer.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose the Nimbrel Folder to open.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nimbrel encrypts your files before they are stored in the cloud, and shows them to you as an ordinary disk.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Caps Lock is on.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%@ files (*.%@)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hide password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show password</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Warning</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%@&quot; could not be mounted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Could not create the encrypted folder.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nimbrel for Mac Manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The Nimbrel Folder does not exist.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tried to find it at %@</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The configuration file does not exist.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>It will be unmounted now.

Do you want to continue?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The mount point %@ is already in use.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Wrong folder configuration file!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please choose a different folder or create a new Nimbrel Folder. If the folder is being synchronized right now, please wait until the whole folder has been synchronized and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The path %@ is not a valid Nimbrel Folder.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The mount point does not exist.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The mount point is not a directory.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The mount point is not empty.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Could not delete the mount point.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Its files are in use. Close the programs that use them, then try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%@. Close that first, then try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%@&quot; could not be unmounted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The current password is not correct.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Could not change the password.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The new Nimbrel Folder has not been created!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file was kept as %@. Add your encrypted folders again; none of their files is touched.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add your encrypted folders again; none of their files is touched.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The list of volumes could not be read.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The list of volumes could not be saved.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
