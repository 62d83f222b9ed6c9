@echo off
rem Makes a dictation with a name and notes, ready to be recorded:
rem     dictate "Harris: letter" "Please send a copy to the clinic"
rem Corvane must be running, and corvanecmd.exe lie in the current folder or in the path.
corvanecmd new
if errorlevel 100 goto failed
corvanecmd name %1
if errorlevel 100 goto failed
corvanecmd notes %2
if errorlevel 100 goto failed
corvanecmd open
goto end
:failed
echo The dictation was not made, or not as it was wanted.
:end
