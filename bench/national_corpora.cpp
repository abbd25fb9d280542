#include "national_corpora.h"

namespace kivbench::national {

namespace {

constexpr const char* ascii_words =
    "Windows Linux Internet Web server online e-mail USB PDF CD-ROM Unicode London "
    "Microsoft John Smith version 2.0 24 7 100 1989 2024 3,5 15:30 10% A4 (1) TV";

}  // namespace

// The columns of some of these scripts differ from tool to tool.
// clang-format off

// Latin letters and marks.

const Corpus polish = {
    .name = "polish",
    .vocabulary =
        "nie się na do jest że jak ale po co tak za od już go być czy też przez tylko jego "
        "może bardzo kiedy gdzie wszystko życie człowiek dzień świat przyszłość można był "
        "źródło łąka żółty książka Łódź Kraków święto środa piątek października państwo "
        "społeczeństwo miłość wiadomości pieniądze Śląsk ćwiczenie Żołnierz kość róża dźwięk",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus czech = {
    .name = "czech",
    .vocabulary =
        "je se na že to který být mít jako ale tak když protože člověk rok den život práce "
        "dítě město země příklad část otázka všechno může také více již přes české Čechy "
        "Říjen řeka žena škola učitel těžký krásný světlo dům stůl kůň běžet šťastný Příliš "
        "žluťoučký úpěl ďábelské ódy něco vláda společnost zprávy středa čtvrtek pátek „dnes“",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus maltese = {  // with Esperanto, the same charset's other language
    .name = "maltese",
    .vocabulary =
        "il-gvern għandu għal minn kien hija huwa dawn wara meta ħafna żmien ġurnata belt "
        "dar ħobż ilma skola għalliem tifel tifla Għawdex Ħamrun Żejtun Ċirkewwa ġdid "
        "ċkejken xogħol poplu liġi ħajja qalb il-Ġimgħa il-Ħadd ħanut żarbun iċ-ċar "
        "la kaj estas en ke mi ne ĝi ĉiu antaŭ ankaŭ tiuj homoj ŝi aŭ ĉar manĝi lingvo "
        "Ĉu ĵurnalo eĥoŝanĝo ĉiuĵaŭde laŭ urbo tago Ŝtato ĥoro hodiaŭ",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus baltic = {  // Latvian and Estonian
    .name = "baltic",
    .vocabulary =
        "un ir ka no ar par uz kas lai bija vai pēc tas arī gads cilvēks diena valsts "
        "pilsēta dzīve māja ļoti bērns skolēns ūdens zeme saule jūra mežs Rīga Latvija "
        "šodien nākotne ķirsis ģimene ņemt vējš žurnāls Čehija šķērsot valdība Ēriks "
        "ja on ei see kui oma oli ta mis aga või nii siis päev aasta elu inimene töö öö "
        "üks õpetaja küsimus õhtu jõgi Õues tänapäev šokolaad ülikool žanr Ärimees",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus welsh = {  // with Irish in its old spelling
    .name = "welsh",
    .vocabulary =
        "yr y a yn i o mae ar wedi gan bod am fel hyn ei eu dim oes dydd byd dŵr tŷ tân "
        "cŵn gŵr môr llên gwên Cymru Caerdydd llywodraeth ysgol plentyn dyn mân siŵr ŷd "
        "ŵyn pŵer ffŵl cyfrifiadur gwybodaeth cymdeithas Ŵyl "
        "agus is an na ar le do bí sé sí féin ḃí ċeann ḋuine ḟear ġaoṫ ṁór ṗáiste ṡúil ṫír "
        "Éire Ḃaile Áṫa Cliaṫ maċaire leaḃar bóṫar",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus romanian = {
    .name = "romanian",
    .vocabulary =
        "și în de la cu nu o este pe care că un mai din sau să ca dar fost când după fără "
        "viață oraș țară românesc copil școală învățător timp întrebare răspuns București "
        "Iași Țările ploaie toamnă pâine apă câmp munți știri societate guvern înțelege "
        "șapte douăzeci mâine astăzi Însă „acasă” dragoste preț 25 € câțiva sfârșit",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus nordic = {  // Icelandic and Northern Sami
    .name = "nordic",
    .vocabulary =
        "og að í á það er sem var til um við ekki en hann hún með ár dagur maður fólk bær "
        "líf tími hús þar þegar þjóð vatn sjór jökull Ísland Þingvellir ríkisstjórn góður "
        "skóli kennari ungur Öræfi ég þú við fjörður íþrótt samfélag spurning æskan "
        "ja lea go ii mun don son dat maŋŋel olbmot čáhci giella sápmelaš Ŧ guokte boađii "
        "šaddat áigi oahpaheaddji Čáppa ruoŧŧa beaŋkka dáža gávpot eallin žurnála Ŋ",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus lithuanian = {
    .name = "lithuanian",
    .vocabulary =
        "ir yra kad su iš bet kaip tai jau buvo apie nuo per prie labai žmogus diena metai "
        "šalis miestas gyvenimas mokykla vaikas mokytojas vanduo žemė saulė jūra miškas "
        "Vilnius Šiauliai Žemaitija ąžuolas ėjo įvairūs ūkis šįryt pavasarį vėžys ačiū kūčios "
        "lietuvių mūsų jų visų darbų kalbą tėvynę sąjunga vyriausybė „šiandien” Įmonė "
        "Ąžuolynas Čia klausimas atsakymas žinios ketvirtadienį Rūta",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus french = {
    .name = "french",
    .vocabulary =
        "le la les un une des et en à de qui que où été déjà voilà élève être après même "
        "fenêtre garçon français naïve cœur œuvre sœur août hôtel théâtre mais pour avec "
        "jour temps monde maison plusieurs gouvernement développement événement Noël Œdipe "
        "« peut-être » l'été d'après c'était qu'à l'œil 12 € 1,50 € prix Élysée Ça À "
        "société problème mère père forêt île goût connaître bœuf maïs aiguë",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus turkish = {
    .name = "turkish",
    .vocabulary =
        "ve bir bu için ile da de çok ne daha gibi kadar sonra var olarak en ben sen biz "
        "değil şey gün yıl zaman insan dünya çocuk kadın iş yaşam şehir ülke öğretmen okul "
        "İstanbul Ankara İzmir ağaç ığdır ışık güneş yağmur göz söz düşünce bağımsızlık "
        "cumhuriyet hükümet soru cevap Türkçe Şubat Ağustos Eylül Çarşamba kâğıt rüzgâr "
        "bugün yarın öğrenci İngilizce büyük küçük güzel eğitim",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus vietnamese = {  // the letters that code page 1258 has in one piece
    .name = "vietnamese",
    .vocabulary =
        "và là có cho không trong khi theo sau cho hai ba năm sáu cá nhà trà cô chúng ta "
        "tôi ông bà anh em con cháu quê hương đi đâu đó đây đang làm hôm nay mai sáng trưa "
        "đêm trăng sao hoa lá cây dài cao thành công thiên nhiên cà phê mùa xuân thu đông "
        "mưa nên trên lên bên tên tin thông minh hoà âm Đông Nam Âu Á Úc Ôn tư sinh viên "
        "thân yêu luôn nghe tranh luân lưu ngân hàng công ty tiêu dùng",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

// Other alphabets.

const Corpus russian = {
    .name = "russian",
    .vocabulary =
        "и в не на я быть он с что а по это она этот к но они мы весь который из у то за "
        "свой человек время дело жизнь первый день рука другой раз вопрос работа большой "
        "город страна правительство государство необходимость возможность развитие стол "
        "окно дом улица Москва июля Санкт-Петербург Ещё ёлка объявление съезд Россия "
        "понедельник любовь пожалуйста счастье Чехов щука юность эхо Ярославль",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus ukrainian = {
    .name = "ukrainian",
    .vocabulary =
        "і в не на я бути він з що а до це вона цей але вони ми весь який із у та за свій "
        "людина час справа життя перший день рука інший раз питання робота великий місто "
        "країна уряд держава можливість розвиток стіл вікно дім вулиця Київ липня Україна "
        "Європа їжа її ґанок ґрунт є сім'я п'ять об'єкт Івано-Франківськ Її Єдність щастя "
        "середа четвер кохання будь ласка Харків зозуля ящірка юнацтво",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus greek = {
    .name = "greek",
    .vocabulary =
        "και το να του η της με που την από για είναι τα στο οι θα δεν τον σε ένα αυτό "
        "άνθρωπος χρόνος ημέρα ζωή κόσμος παιδί σπίτι πόλη χώρα δουλειά ερώτηση νερό ήλιος "
        "θάλασσα βιβλίο σχολείο δάσκαλος Αθήνα Ελλάδα Θεσσαλονίκη Ύδρα Ήπειρος Έλληνες όχι "
        "ώρα Ώρες ίδιος Όμηρος υπουργός κυβέρνηση δημοκρατία φιλοσοφία ψυχή ξένος μαΐου "
        "καΐκι ευχαριστώ παρακαλώ πρωί σήμερα αύριο «εδώ» Άνοιξη Ίσως",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus arabic = {
    .name = "arabic",
    .vocabulary =
        "في من على إلى أن هذا التي الذي كان عن مع هو هي ما لا لم كل بعد قبل بين عند حتى "
        "يوم سنة وقت حياة عالم إنسان رجل امرأة طفل بيت مدينة دولة شارع مدرسة كتاب ماء شمس "
        "بحر سؤال جواب عمل حكومة مجتمع القاهرة بغداد العربية مسؤول رئيس شيء قراءة آخر لغة "
        "جداً شكراً مُعلّم الأربعاء الخميس الجمعة غداً اليوم ظهر ضوء ذهب ثلاثة خبز هل؟ نعم؛",
    .separator = " ", .full_stop = ". ", .comma = "، ", .ascii = ascii_words};

const Corpus hebrew = {
    .name = "hebrew",
    .vocabulary =
        "של את על לא זה הוא היא אני אתה עם כי אם גם כל היה יש אין מה מי איך כאשר אבל רק "
        "יום שנה זמן חיים עולם אדם איש אישה ילד בית עיר ארץ רחוב בית-ספר ספר מים שמש ים "
        "שאלה תשובה עבודה ממשלה חברה ירושלים תל-אביב עברית מלך דרך שלום תודה בבקשה היום "
        "מחר רביעי חמישי שישי שבת לחם אור קיץ חורף גשם צפון דרום ט\"ו צה\"ל ג'ורג' אוניברסיטה",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

const Corpus thai = {  // a space ends a sentence
    .name = "thai",
    .vocabulary =
        "ที่ และ ใน ของ เป็น มี การ ไม่ ให้ ได้ จะ ว่า กับ นี้ คน ไป มา แต่ ก็ หรือ จาก อยู่ "
        "เวลา วัน ปี ชีวิต โลก ประเทศ เมือง บ้าน โรงเรียน ครู นักเรียน หนังสือ น้ำ พระอาทิตย์ "
        "ทะเล คำถาม คำตอบ ทำงาน รัฐบาล สังคม กรุงเทพ ประเทศไทย ภาษา เชียงใหม่ วันพุธ "
        "พฤหัสบดี ศุกร์ วันนี้ พรุ่งนี้ ขอบคุณ สวัสดี ข้าว ผู้หญิง ผู้ชาย เด็ก ใหญ่ เล็ก สวยงาม ฤดูฝน "
        "ญี่ปุ่น ต่างๆ ฯลฯ ๒๕๖๗ ๑๒ บาท",
    .separator = "", .full_stop = " ", .comma = " ", .ascii = ascii_words};

// East Asia. Chinese and Japanese write no spaces between words.

const Corpus japanese = {
    .name = "japanese",
    .vocabulary =
        "の は を に が と で も です ます した して いる という こと もの ため から まで "
        "これ それ ある ない よう さん 日本語 東京 大阪 昨日 今日 明日 時間 人間 問題 新聞 "
        "電車 会社 学校 先生 学生 友達 世界 生活 社会 政府 経済 発展 科学技術 情報 研究 "
        "コンピュータ データ インターネット プログラム サーバー テレビ ニュース ヨーロッパ "
        "「はい」 図書館 美しい 食べる 飲む 行きました 考えている 読み書き 水曜日 ﾃﾚﾋﾞ 龍 熙 々",
    .separator = "", .full_stop = "。", .comma = "、", .ascii = ascii_words};

const Corpus korean = {
    .name = "korean",
    .vocabulary =
        "그리고 그러나 이것은 있다 없는 하는 한다 대한 것을 수 있는 우리 나라 사람들이 시간 "
        "하루 생활 세계 사회 정부는 경제 발전 문제가 질문 대답 학교에서 선생님 학생 친구와 "
        "도서관 컴퓨터 인터넷 프로그램을 서울특별시 대한민국 부산 한국어로 신문 뉴스 어제 "
        "오늘 내일 수요일 아름다운 먹었습니다 생각합니다 과학기술 연구원 물 빛 꽃 값이 읽고 "
        "大韓民國 漢字 똠방각하 펩시 햄버거 쌀밥 훨씬 뵙겠습니다 괜찮아요",
    .separator = " ", .full_stop = ". ", .comma = ", ", .ascii = ascii_words};

#define KIV_SIMPLIFIED                                                                    \
    "的 一 是 不 了 人 我 在 有 他 这 中 大 来 上 国 个 到 说 们 为 子 和 你 地 出 道 也 时 年 "      \
    "时间 问题 工作 社会 发展 经济 政府 学生 老师 朋友 今天 明天 昨天 因为 所以 科学技术 计算机 "      \
    "互联网 程序 中华人民共和国 北京 上海 广州 图书馆 大学 研究 历史 文化 世界 生活 新闻 报纸 "        \
    "星期三 美丽 吃饭 喝水 认为 读书 写字 “你好” 《红楼梦》 龙 凤凰 魑魅魍魉 朱镕基"

const Corpus simplified = {
    .name = "simplified",
    .vocabulary = KIV_SIMPLIFIED,
    .separator = "", .full_stop = "。", .comma = "，", .ascii = ascii_words};

const Corpus gb18030 = {
    .name = "gb18030",
    .vocabulary = KIV_SIMPLIFIED " " KIV_SIMPLIFIED " Köln 서울 㐂 𠮷野家 བོད ئۇيغۇر 😀 ñ",
    .separator = "", .full_stop = "。", .comma = "，", .ascii = ascii_words};

const Corpus traditional = {
    .name = "traditional",
    .vocabulary =
        "的 一 是 不 了 人 我 在 有 他 這 中 大 來 上 國 個 到 說 們 為 子 和 你 地 出 道 也 時 年 "
        "時間 問題 工作 社會 發展 經濟 政府 學生 老師 朋友 今天 明天 昨天 因為 所以 科學技術 電腦 "
        "網際網路 程式 中華民國 臺北 高雄 臺灣 圖書館 大學 研究 歷史 文化 世界 生活 新聞 報紙 "
        "星期三 美麗 吃飯 喝水 認為 讀書 寫字 「你好」 《紅樓夢》 龍 鳳凰 魑魅魍魎 鬱 籲 ㄅㄆㄇ",
    .separator = "", .full_stop = "。", .comma = "，", .ascii = ascii_words};

const Corpus cantonese = {
    .name = "cantonese",
    .vocabulary =
        "嘅 咗 嚟 唔 喺 佢 佢哋 我哋 啲 冇 乜嘢 嗰個 咁 睇 攞 搵 瞓覺 嘢 咩 啦 喎 噉 嘥 揸 "
        "香港 九龍 新界 銅鑼灣 旺角 巴士 的士 地鐵 茶餐廳 今日 聽日 尋日 點解 因為 所以 而家 "
        "幾時 邊度 朋友 學校 老師 返工 放工 食飯 飲茶 屋企 電腦 報紙 政府 經濟 社會 時間 問題 "
        "好多 鍾意 靚 平 貴 「係」 搭𨋢 𠝹開 𡁻飯 𢳂水 𥄫住 𠹌 𨳒 着 邨 邨口 裏面 啫 嗱",
    .separator = "", .full_stop = "。", .comma = "，", .ascii = ascii_words};

// clang-format on

}  // namespace kivbench::national
