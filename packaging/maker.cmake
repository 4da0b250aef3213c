# Who makes this program: shown in the box behind "About the Software". These are placeholders;
# replace them before packaging. The QR code is made from the web address by the build.
set(LUMETRA_MAKER_NAME "Zev")
set(LUMETRA_MAKER_STREET "1 Placeholder Street")
set(LUMETRA_MAKER_TOWN "00000 Placeholder Town")
set(LUMETRA_MAKER_COUNTRY "Placeholder Country")
set(LUMETRA_MAKER_WEB_ADDRESS "https://www.example.com/lumetra")
