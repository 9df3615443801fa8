@echo off
rem Quita de Windows lo que instalar.cmd ha registrado; los ficheros quedan.
setlocal
set aqui=%~dp0
set nativo=%SystemRoot%\System32
if defined PROCESSOR_ARCHITEW6432 set nativo=%SystemRoot%\Sysnative

if exist "%SystemRoot%\SysWOW64\regsvr32.exe" goto ambas
if "%PROCESSOR_ARCHITECTURE%"=="AMD64" goto solo64
call :quita "%nativo%\regsvr32.exe" x86
goto fin
:ambas
call :quita "%SystemRoot%\SysWOW64\regsvr32.exe" x86
:solo64
call :quita "%nativo%\regsvr32.exe" x64
:fin
exit /b 0

:quita
%1 /s /u /n /i:user "%aqui%bin\%2\Ambrelio.dll"
%1 /s /u "%aqui%bin\%2\Ambrelio.dll"
echo Ambrelio %2: ya no esta registrada.
goto :eof
